// The least that a window of Qt takes to start: one label, in a window as large as the program's.

#include <QApplication>
#include <QLabel>

int main(int argc, char** argv) {
    const QApplication app(argc, argv);
    QLabel window(QStringLiteral("Vellmora"));
    window.setMinimumSize(1220, 800);
    window.show();
    return QApplication::exec();
}
