#include "library/PictureMarks.h"

#include "base/Error.h"
#include "base/FileState.h"
#include "base/Files.h"
#include "base/LimitedDevice.h"
#include "base/TemporaryFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSet>

namespace vellmora {

namespace {

constexpr qsizetype markNameLength = 64;

QString markNameOf(const QString& version) {
    const QByteArray digest = QCryptographicHash::hash(version.toUtf8(), QCryptographicHash::Sha256);
    return QString::fromLatin1(digest.toHex());
}

/// Whether there is a note that no program holds. One that is held is another window's, at work on the same
/// picture.
bool isLeftBehind(const QByteArray& mark) {
    const FileDescriptor file(::open(mark.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    return file.isValid() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

/// A note of our own, held until the end. It has its lock before it has its name. Where none can be made the
/// picture is decoded without one.
class Mark {
public:
    Mark(const QString& folder, QByteArray path) : m_path(std::move(path)) {
        try {
            files::createDirectory(folder);
            TemporaryFile file = createTemporaryFile(folder);
            m_isThere = std::rename(QFile::encodeName(file.path).constData(), m_path.constData()) == 0;
            m_file = std::move(file.file);
        } catch (const Error&) {
            m_isThere = false;
        }
    }
    void leaveBehind() { m_isLeftBehind = true; }
    ~Mark() {
        if (m_isThere && !m_isLeftBehind)
            ::unlink(m_path.constData());
    }
    Mark(const Mark&) = delete;
    Mark& operator=(const Mark&) = delete;

private:
    QByteArray m_path;
    FileDescriptor m_file;
    bool m_isThere = false;
    bool m_isLeftBehind = false;
};

}  // namespace

PictureMarks::PictureMarks(QString folder) : m_folder(std::move(folder)) {}

QString PictureMarks::version(const QString& path) {
    const std::optional<FileState> state = path.isEmpty() ? std::nullopt : FileState::of(path);
    if (!state)
        return {};
    return QStringLiteral("%1 %2 %3 %4 %5 %6 %7")
        .arg(path)
        .arg(state->number)
        .arg(state->size)
        .arg(state->modified.tv_sec)
        .arg(state->modified.tv_nsec)
        .arg(state->changed.tv_sec)
        .arg(state->changed.tv_nsec);
}

std::optional<Image> PictureMarks::decode(const QString& path, Caution caution) const {
    const QString content = version(path);
    if (content.isEmpty())
        return std::nullopt;
    const QByteArray markPath = QFile::encodeName(m_folder + QLatin1Char('/') + markNameOf(content));
    if (caution == Caution::passOver && isLeftBehind(markPath))
        return std::nullopt;
    Mark mark(m_folder, markPath);
    const auto begin = timeComputed();
    std::optional<Image> image = Image::fromFile(path);
    if (!image && timeComputed() - begin >= Image::longestDecoding)
        mark.leaveBehind();
    return image;
}

void PictureMarks::sweep(const QString& pictures) const {
    constexpr auto files = QDir::Files | QDir::Hidden;
    const QStringList marks = QDir(m_folder).entryList(files);
    if (marks.isEmpty())
        return;
    QSet<QString> current;
    for (const QString& name : QDir(pictures).entryList(files))
        current.insert(markNameOf(version(pictures + QLatin1Char('/') + name)));
    for (const QString& mark : marks) {
        const QByteArray path = QFile::encodeName(m_folder + QLatin1Char('/') + mark);
        // What is being made has another name yet.
        if (mark.size() == markNameLength && !current.contains(mark) && isLeftBehind(path))
            ::unlink(path.constData());
    }
}

}  // namespace vellmora
