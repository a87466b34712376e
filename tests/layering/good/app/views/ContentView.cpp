#include <QWidget>
#include "app/ContentViewModel.h"
