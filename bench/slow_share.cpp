// A folder as a slow share shows it: what is read and written goes through a line of so many bytes a second,
// and each request is answered so much later than on a disk.
//
//   slow_share FOLDER MOUNT_POINT MEGABYTES_A_SECOND LATENCY_MS LOG
//
// A file system of the kernel's (FUSE), so caches, readahead and writing back are those that network shares
// have, too. Ends with the mount. The log gets a line for each request: the time when it came (milliseconds
// of CLOCK_MONOTONIC), its name, and for those that carry bytes their offset and number.

#define FUSE_USE_VERSION 312

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <fuse.h>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr double cacheSeconds = 1;

/// All requests share one line: one's bytes follow the other's. The latency of many passes at the same time.
class Line {
public:
    Line(double bytesPerSecond, std::chrono::duration<double, std::milli> latency, std::FILE* log)
        : m_bytesPerSecond(bytesPerSecond),
          m_latency(std::chrono::duration_cast<Clock::duration>(latency)),
          m_log(log) {}

    /// Waits until a request's bytes would have come through.
    void pass(const char* request, size_t bytes = 0, off_t offset = 0) {
        const std::chrono::duration<double> length(static_cast<double>(bytes) / m_bytesPerSecond);
        Clock::time_point end;
        {
            const std::scoped_lock lock(m_mutex);
            const Clock::time_point now = Clock::now();
            tell(now, request, bytes, offset);
            end = m_freeFrom =
                std::max(now, m_freeFrom) + std::chrono::duration_cast<Clock::duration>(length);
        }
        std::this_thread::sleep_until(end + m_latency);
    }

private:
    void tell(Clock::time_point now, const char* request, size_t bytes, off_t offset) {
        const std::chrono::duration<double, std::milli> time = now.time_since_epoch();
        std::fprintf(m_log, "%.3f %s %lld %zu\n", time.count(), request, static_cast<long long>(offset),
                     bytes);
    }

    double m_bytesPerSecond;
    Clock::duration m_latency;
    std::FILE* m_log;
    std::mutex m_mutex;
    Clock::time_point m_freeFrom;
};

struct Share {
    std::string folder;
    Line line;
};

Share& share() {
    return *static_cast<Share*>(fuse_get_context()->private_data);
}

std::string placeOf(const char* path) {
    return share().folder + path;
}

/// What the system answers, as FUSE wants it.
template <typename Result>
int answer(Result result) {
    return result < 0 ? -errno : static_cast<int>(result);
}

void* start(fuse_conn_info* connection, fuse_config* config) {
    // As shares of the kernel's own: bytes are written back later, and kept as long as the file looks the
    // same.
    connection->want |= connection->capable & (FUSE_CAP_WRITEBACK_CACHE | FUSE_CAP_AUTO_INVAL_DATA);
    config->kernel_cache = 1;
    // So are attributes and names, those of files that are not there too.
    config->attr_timeout = config->entry_timeout = config->negative_timeout = cacheSeconds;
    config->use_ino = 1;
    return fuse_get_context()->private_data;
}

int getAttributes(const char* path, struct stat* info, fuse_file_info* file) {
    share().line.pass("getattr");
    return answer(file ? ::fstat(static_cast<int>(file->fh), info) : ::lstat(placeOf(path).c_str(), info));
}

int list(const char* path, void* entries, fuse_fill_dir_t add, off_t, fuse_file_info*, fuse_readdir_flags) {
    share().line.pass("readdir");
    DIR* folder = ::opendir(placeOf(path).c_str());
    if (!folder)
        return -errno;
    while (const dirent* entry = ::readdir(folder))
        add(entries, entry->d_name, nullptr, 0, static_cast<fuse_fill_dir_flags>(0));
    ::closedir(folder);
    return 0;
}

int opened(int descriptor, fuse_file_info* file) {
    file->fh = static_cast<std::uint64_t>(descriptor);
    return descriptor < 0 ? -errno : 0;
}

/// Where bytes are written back later, the kernel reads what it completes, and says itself where the end is.
int flagsFor(const fuse_file_info* file) {
    const int access = (file->flags & O_ACCMODE) == O_WRONLY ? O_RDWR : file->flags & O_ACCMODE;
    return (file->flags & ~(O_ACCMODE | O_APPEND)) | access;
}

int open(const char* path, fuse_file_info* file) {
    share().line.pass("open");
    return opened(::open(placeOf(path).c_str(), flagsFor(file)), file);
}

int create(const char* path, mode_t mode, fuse_file_info* file) {
    share().line.pass("create");
    return opened(::open(placeOf(path).c_str(), flagsFor(file) | O_CREAT, mode), file);
}

int read(const char*, char* bytes, size_t size, off_t offset, fuse_file_info* file) {
    const ssize_t count = ::pread(static_cast<int>(file->fh), bytes, size, offset);
    share().line.pass("read", static_cast<size_t>(std::max<ssize_t>(count, 0)), offset);
    return answer(count);
}

int write(const char*, const char* bytes, size_t size, off_t offset, fuse_file_info* file) {
    share().line.pass("write", size, offset);
    return answer(::pwrite(static_cast<int>(file->fh), bytes, size, offset));
}

/// Nobody waits for the kernel to tell this.
int release(const char*, fuse_file_info* file) {
    return answer(::close(static_cast<int>(file->fh)));
}

int synchronize(const char*, int, fuse_file_info*) {
    share().line.pass("fsync");  // what is written is on the share; its own disk is not what is slow
    return 0;
}

int truncate(const char* path, off_t size, fuse_file_info* file) {
    share().line.pass("truncate");
    return answer(file ? ::ftruncate(static_cast<int>(file->fh), size)
                       : ::truncate(placeOf(path).c_str(), size));
}

int rename(const char* from, const char* to, unsigned flags) {
    share().line.pass("rename");
    return answer(::renameat2(AT_FDCWD, placeOf(from).c_str(), AT_FDCWD, placeOf(to).c_str(), flags));
}

int unlink(const char* path) {
    share().line.pass("unlink");
    return answer(::unlink(placeOf(path).c_str()));
}

int changeMode(const char* path, mode_t mode, fuse_file_info*) {
    share().line.pass("chmod");
    return answer(::chmod(placeOf(path).c_str(), mode));
}

int changeOwner(const char* path, uid_t user, gid_t group, fuse_file_info*) {
    share().line.pass("chown");
    return answer(::lchown(placeOf(path).c_str(), user, group));
}

int changeTimes(const char* path, const timespec* times, fuse_file_info*) {
    share().line.pass("utimens");
    return answer(::utimensat(AT_FDCWD, placeOf(path).c_str(), times, AT_SYMLINK_NOFOLLOW));
}

int getRoom(const char* path, struct statvfs* info) {
    share().line.pass("statfs");
    return answer(::statvfs(placeOf(path).c_str(), info));
}

fuse_operations operations() {
    fuse_operations all{};
    all.init = start;
    all.getattr = getAttributes;
    all.readdir = list;
    all.open = open;
    all.create = create;
    all.read = read;
    all.write = write;
    all.release = release;
    all.fsync = synchronize;
    all.truncate = truncate;
    all.rename = rename;
    all.unlink = unlink;
    all.chmod = changeMode;
    all.chown = changeOwner;
    all.utimens = changeTimes;
    all.statfs = getRoom;
    return all;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 6)
        return 1;
    std::FILE* log = std::fopen(argv[5], "w");
    if (!log)
        return 1;
    std::setvbuf(log, nullptr, _IOLBF, 1 << 12);
    const std::chrono::duration<double, std::milli> latency(std::atof(argv[4]));
    Share share{argv[1], Line(std::atof(argv[3]) * 1e6, latency, log)};
    // Requests that wait for the line have a thread each, so that none waits for a thread.
    std::string foreground = "-f";
    std::string threads = "-omax_threads=100";
    std::array<char*, 5> words{argv[0], argv[2], foreground.data(), threads.data(), nullptr};
    const fuse_operations all = operations();
    return fuse_main(4, words.data(), &all, &share);
}
