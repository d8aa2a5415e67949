#pragma once

#include <chrono>

#include <QByteArray>
#include <QIODevice>

namespace vellmora {

/// How long the calling thread has computed. The clock stands still while others compute.
std::chrono::nanoseconds timeComputed();

/// Bytes for a decoder that may take only so long: it gets none any more once the thread has computed for the
/// time given. A decoder takes that for a file that cannot be read on.
class LimitedDevice : public QIODevice {
    Q_OBJECT

public:
    /// At most `portion` bytes are handed out at once: a decoder that reads in large blocks would learn late
    /// that its time is over. One that asks for more must be able to go on with less.
    LimitedDevice(QByteArray bytes, std::chrono::nanoseconds time, qint64 portion);

    bool isTimeOver() const;
    qint64 size() const override { return m_bytes.size(); }
    bool seek(qint64 position) override;

protected:
    qint64 readData(char* buffer, qint64 capacity) override;
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    qint64 m_portion;
    qint64 m_at = 0;
    std::chrono::nanoseconds m_end;  ///< of `timeComputed`
};

}  // namespace vellmora
