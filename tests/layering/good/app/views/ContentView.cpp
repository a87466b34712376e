#include <QWidget>
#include "app/window/ContentViewModel.h"
