#include <QWidget>
