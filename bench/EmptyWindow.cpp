// SPDX-License-Identifier: GPL-3.0-or-later
// What the launch of the application is compared with: an empty main window of the same toolkit and size, which says
// when it is painted for the first time.

#include <QApplication>
#include <QMainWindow>

#include <cstdio>

namespace {

class Paper : public QWidget {
protected:
    void paintEvent(QPaintEvent*) override { std::fputs("first frame\n", stderr); }
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setCentralWidget(new Paper);
    window.resize(650, 589);
    window.show();
    return QApplication::exec();
}
