// Saves a picture of the whole screen of the current display as PNG, so that the program
// can be looked at on a machine without a monitor (under a virtual display).
//
//   tarvex-screenshot FILE.png

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <cstdio>

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: tarvex-screenshot FILE.png\n");
        return 2;
    }
    QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) {
        std::fprintf(stderr, "tarvex-screenshot: no screen\n");
        return 1;
    }
    if (!screen->grabWindow(0).save(QString::fromLocal8Bit(argv[1]), "PNG")) {
        std::fprintf(stderr, "tarvex-screenshot: cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
