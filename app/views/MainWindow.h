// The main window of Ondrilet: the frame that holds the converter's panels. GUI thread only.
#pragma once

#include <QMainWindow>

namespace Ondrilet {

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
};

} // namespace Ondrilet
