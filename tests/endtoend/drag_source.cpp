// A small program beside ours, from which files are dragged as from a file manager: drag_source FILE…

#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

namespace {

class Source : public QLabel {
public:
    explicit Source(const QStringList& files) : QLabel(QStringLiteral("Dateien")) {
        for (const QString& file : files)
            m_urls.append(QUrl::fromLocalFile(file));
        setAlignment(Qt::AlignCenter);
        setGeometry(20, 20, 130, 70);
    }

protected:
    void mousePressEvent(QMouseEvent*) override {
        auto* dropped = new QMimeData;
        dropped->setUrls(m_urls);
        auto* drag = new QDrag(this);
        drag->setMimeData(dropped);
        drag->exec(Qt::CopyAction);
    }

private:
    QList<QUrl> m_urls;
};

}  // namespace

int main(int argc, char** argv) {
    const QApplication app(argc, argv);
    Source source(QApplication::arguments().mid(1));
    source.setWindowFlag(Qt::X11BypassWindowManagerHint);
    source.show();
    return QApplication::exec();
}
