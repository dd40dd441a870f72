#include "store/sqlite/FaultyDisk.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <new>
#include <set>
#include <stdexcept>

namespace monitorservice::test {

namespace {

// What a disk writes whole or not at all.
constexpr std::size_t smallSector = 512;
constexpr std::size_t largeSector = 4096;
// In operations; whoever never syncs loses power all the same.
constexpr std::size_t longestWaitForSync = 1000;

std::string contentOf(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace

// SQLite calls through C structures; the real file's memory follows this one's.
struct FaultyDisk::File
{
    sqlite3_file base;
    FaultyDisk* disk;
    std::shared_ptr<Content> content; // null for files without a name
    bool isMain;
    bool syncsDirectory; // a log that is new: SQLite's own VFS syncs its folder with it
    sqlite3_file* real;
};

struct FaultyDisk::Calls
{
    static File& file(sqlite3_file* base) { return *reinterpret_cast<File*>(base); }
    static FaultyDisk& disk(sqlite3_vfs* vfs) { return *static_cast<FaultyDisk*>(vfs->pAppData); }
    static const sqlite3_io_methods& real(const File& file) { return *file.real->pMethods; }

    static int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* base, int flags, int* outFlags)
    {
        FaultyDisk& disk = Calls::disk(vfs);
        const std::lock_guard lock(disk.m_mutex);
        base->pMethods = nullptr;
        if (!disk.m_hasPower) {
            return SQLITE_CANTOPEN;
        }
        File* const file = new (base) File{};
        file->disk = &disk;
        file->real = reinterpret_cast<sqlite3_file*>(file + 1);
        const bool isNew = name != nullptr && !std::filesystem::exists(name);
        const int result = disk.m_real->xOpen(disk.m_real, name, file->real, flags, outFlags);
        if (result != SQLITE_OK) {
            file->~File();
            base->pMethods = nullptr;
            return result;
        }
        file->isMain = (flags & SQLITE_OPEN_MAIN_DB) != 0;
        file->syncsDirectory = isNew && !file->isMain;
        if (name != nullptr) {
            std::shared_ptr<Content>& content = disk.m_directory[name];
            if (!content || isNew) {
                content = std::make_shared<Content>();
            }
            file->content = content;
        }
        base->pMethods = methods();
        return SQLITE_OK;
    }

    static int close(sqlite3_file* base)
    {
        File& file = Calls::file(base);
        const int result = real(file).xClose(file.real);
        file.~File();
        return result;
    }

    static int read(sqlite3_file* base, void* bytes, int size, sqlite3_int64 offset)
    {
        const File& file = Calls::file(base);
        return file.disk->hasPower() ? real(file).xRead(file.real, bytes, size, offset) : SQLITE_IOERR_READ;
    }

    static int write(sqlite3_file* base, const void* bytes, int size, sqlite3_int64 offset)
    {
        const File& file = Calls::file(base);
        FaultyDisk& disk = *file.disk;
        const std::lock_guard lock(disk.m_mutex);
        const Outcome outcome = disk.begin(Operation::Write);
        if (outcome == Outcome::Impossible) {
            if (!disk.m_hasPower) {
                return SQLITE_IOERR_WRITE;
            }
            // Some of it may have found its place.
            size /= 2;
        }
        if (file.content) {
            file.content->unsynced.push_back(
                {false, static_cast<std::size_t>(offset),
                 std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(size)), false});
        }
        disk.m_mainBytes += file.isMain ? static_cast<std::uint64_t>(size) : 0;
        const int result = real(file).xWrite(file.real, bytes, size, offset);
        if (outcome == Outcome::Impossible) {
            return disk.m_isFull ? SQLITE_FULL : SQLITE_IOERR_WRITE;
        }
        return outcome == Outcome::Done ? result : SQLITE_IOERR_WRITE;
    }

    static int truncate(sqlite3_file* base, sqlite3_int64 size)
    {
        const File& file = Calls::file(base);
        FaultyDisk& disk = *file.disk;
        const std::lock_guard lock(disk.m_mutex);
        const Outcome outcome = disk.begin(Operation::Other);
        if (outcome == Outcome::Impossible) {
            return SQLITE_IOERR_TRUNCATE;
        }
        if (file.content) {
            file.content->unsynced.push_back({true, static_cast<std::size_t>(size), {}, false});
        }
        const int result = real(file).xTruncate(file.real, size);
        return outcome == Outcome::Done ? result : SQLITE_IOERR_TRUNCATE;
    }

    // The real files need no sync: the test's machine does not lose power.
    static int sync(sqlite3_file* base, int /*flags*/)
    {
        File& file = Calls::file(base);
        FaultyDisk& disk = *file.disk;
        const std::lock_guard lock(disk.m_mutex);
        const Outcome outcome = disk.begin(Operation::Sync);
        if (outcome == Outcome::Impossible && file.content) {
            for (Change& change : file.content->unsynced) {
                change.isDropped = true;
            }
        }
        const bool isDone =
            outcome == Outcome::Done || (outcome == Outcome::InPart && disk.m_operations % 2 == 0);
        if (isDone && !disk.m_ignoresSyncs && file.content) {
            disk.sync(*file.content);
            if (file.syncsDirectory) {
                disk.m_syncedDirectory = disk.m_directory;
                file.syncsDirectory = false;
            }
        }
        return outcome == Outcome::Done ? SQLITE_OK : SQLITE_IOERR_FSYNC;
    }

    static int fileSize(sqlite3_file* base, sqlite3_int64* size)
    {
        return real(file(base)).xFileSize(file(base).real, size);
    }
    static int lock(sqlite3_file* base, int level) { return real(file(base)).xLock(file(base).real, level); }
    static int unlock(sqlite3_file* base, int level)
    {
        return real(file(base)).xUnlock(file(base).real, level);
    }
    static int checkReservedLock(sqlite3_file* base, int* result)
    {
        return real(file(base)).xCheckReservedLock(file(base).real, result);
    }
    static int fileControl(sqlite3_file* base, int operation, void* argument)
    {
        return real(file(base)).xFileControl(file(base).real, operation, argument);
    }
    static int sectorSize(sqlite3_file* base) { return real(file(base)).xSectorSize(file(base).real); }
    static int deviceCharacteristics(sqlite3_file* base)
    {
        return real(file(base)).xDeviceCharacteristics(file(base).real);
    }

    static int shmMap(sqlite3_file* base, int region, int size, int extend, void volatile** memory)
    {
        const File& file = Calls::file(base);
        const bool isFull = [&file] {
            const std::lock_guard lock(file.disk->m_mutex);
            return file.disk->m_isFull && file.disk->m_operations >= file.disk->m_failureBegin;
        }();
        const int result = real(file).xShmMap(file.real, region, size, isFull ? 0 : extend, memory);
        const bool wouldGrow = isFull && extend != 0 && result == SQLITE_OK && *memory == nullptr;
        return wouldGrow ? SQLITE_IOERR_SHMSIZE : result;
    }
    static int shmLock(sqlite3_file* base, int offset, int count, int flags)
    {
        return real(file(base)).xShmLock(file(base).real, offset, count, flags);
    }
    static void shmBarrier(sqlite3_file* base) { real(file(base)).xShmBarrier(file(base).real); }
    static int shmUnmap(sqlite3_file* base, int remove)
    {
        return real(file(base)).xShmUnmap(file(base).real, remove);
    }

    static int remove(sqlite3_vfs* vfs, const char* name, int syncsDirectory)
    {
        FaultyDisk& disk = Calls::disk(vfs);
        const std::lock_guard lock(disk.m_mutex);
        const Outcome outcome = disk.begin(Operation::Other);
        if (outcome == Outcome::Impossible) {
            return SQLITE_IOERR_DELETE;
        }
        const int result = disk.m_real->xDelete(disk.m_real, name, 0);
        if (result == SQLITE_OK) {
            disk.m_directory.erase(name);
        }
        if (outcome == Outcome::InPart) {
            return SQLITE_IOERR_DELETE;
        }
        if (syncsDirectory != 0 && !disk.m_ignoresSyncs) {
            disk.m_syncedDirectory = disk.m_directory;
        }
        return result;
    }

    // Without memory mapping, which would go past the disk.
    static const sqlite3_io_methods* methods()
    {
        static const sqlite3_io_methods table = [] {
            sqlite3_io_methods calls{};
            calls.iVersion = 2;
            calls.xClose = close;
            calls.xRead = read;
            calls.xWrite = write;
            calls.xTruncate = truncate;
            calls.xSync = sync;
            calls.xFileSize = fileSize;
            calls.xLock = lock;
            calls.xUnlock = unlock;
            calls.xCheckReservedLock = checkReservedLock;
            calls.xFileControl = fileControl;
            calls.xSectorSize = sectorSize;
            calls.xDeviceCharacteristics = deviceCharacteristics;
            calls.xShmMap = shmMap;
            calls.xShmLock = shmLock;
            calls.xShmBarrier = shmBarrier;
            calls.xShmUnmap = shmUnmap;
            return calls;
        }();
        return &table;
    }
};

FaultyDisk::FaultyDisk() : m_real(sqlite3_vfs_find(nullptr)), m_vfs(*m_real)
{
    m_vfs.pNext = nullptr;
    m_vfs.zName = "faulty-disk";
    m_vfs.pAppData = this;
    m_vfs.szOsFile = static_cast<int>(sizeof(File)) + m_real->szOsFile;
    m_vfs.xOpen = Calls::open;
    m_vfs.xDelete = Calls::remove;
    if (sqlite3_vfs_register(&m_vfs, 1) != SQLITE_OK) {
        throw std::runtime_error("SQLite does not take the disk");
    }
}

FaultyDisk::~FaultyDisk()
{
    sqlite3_vfs_unregister(&m_vfs);
    sqlite3_vfs_register(m_real, 1);
}

void FaultyDisk::adopt(const std::filesystem::path& folder)
{
    const std::lock_guard lock(m_mutex);
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const auto content = std::make_shared<Content>();
        content->synced = contentOf(entry.path());
        m_directory[entry.path()] = content;
        m_syncedDirectory[entry.path()] = content;
    }
}

void FaultyDisk::ignoreSyncs()
{
    const std::lock_guard lock(m_mutex);
    m_ignoresSyncs = true;
}

void FaultyDisk::losePowerAfter(std::size_t operations)
{
    const std::lock_guard lock(m_mutex);
    m_powerEnd = m_operations + operations;
}

void FaultyDisk::losePowerInSyncAfter(std::size_t operations)
{
    losePowerAfter(operations);
    const std::lock_guard lock(m_mutex);
    m_powerEndsInSync = true;
}

bool FaultyDisk::hasPower() const
{
    const std::lock_guard lock(m_mutex);
    return m_hasPower;
}

void FaultyDisk::fillAfter(std::size_t operations)
{
    const std::lock_guard lock(m_mutex);
    m_failureBegin = m_operations + operations;
    m_isFull = true;
}

void FaultyDisk::breakAfter(std::size_t operations)
{
    const std::lock_guard lock(m_mutex);
    m_failureBegin = m_operations + operations;
    m_isFull = false;
}

void FaultyDisk::failSyncAfter(std::size_t syncs)
{
    const std::lock_guard lock(m_mutex);
    m_goodSyncs = syncs;
}

void FaultyDisk::repair()
{
    const std::lock_guard lock(m_mutex);
    m_failureBegin = SIZE_MAX;
    m_goodSyncs = SIZE_MAX;
}

std::size_t FaultyDisk::failures() const
{
    const std::lock_guard lock(m_mutex);
    return m_failures;
}

std::size_t FaultyDisk::operations() const
{
    const std::lock_guard lock(m_mutex);
    return m_operations;
}

std::uint64_t FaultyDisk::mainBytes() const
{
    const std::lock_guard lock(m_mutex);
    return m_mainBytes;
}

FaultyDisk::Outcome FaultyDisk::begin(Operation operation)
{
    if (!m_hasPower) {
        return Outcome::Impossible;
    }
    const std::size_t number = m_operations++;
    const bool isAwaited = !m_powerEndsInSync || operation == Operation::Sync;
    if (number >= m_powerEnd && (isAwaited || number - m_powerEnd > longestWaitForSync)) {
        m_hasPower = false;
        return Outcome::InPart;
    }
    if (isFailing(operation)) {
        ++m_failures;
        return Outcome::Impossible;
    }
    return Outcome::Done;
}

bool FaultyDisk::isFailing(Operation operation)
{
    if (m_operations > m_failureBegin) {
        return !m_isFull || operation == Operation::Write;
    }
    if (operation != Operation::Sync || m_goodSyncs == SIZE_MAX) {
        return false;
    }
    const bool fails = m_goodSyncs == 0;
    m_goodSyncs = fails ? SIZE_MAX : m_goodSyncs - 1;
    return fails;
}

void FaultyDisk::sync(Content& content)
{
    for (const Change& change : content.unsynced) {
        if (!change.isDropped) {
            apply(content.synced, change);
        }
    }
    content.unsynced.clear();
}

void FaultyDisk::apply(std::string& bytes, const Change& change)
{
    if (change.isTruncation) {
        bytes.resize(change.offset);
        return;
    }
    bytes.resize(std::max(bytes.size(), change.offset + change.bytes.size()));
    bytes.replace(change.offset, change.bytes.size(), change.bytes);
}

// What was written before the power went may be on the disk up to some moment, or here and there, sector by
// sector; a sector that was being written may hold anything.
std::string FaultyDisk::survivorOf(const Content& content, std::mt19937& random)
{
    const std::size_t sector = random() % 2 == 0 ? smallSector : largeSector;
    const unsigned kept = random() % 5 * 25; // percent
    const bool isInOrder = random() % 2 == 0;
    const std::size_t moment = random() % (content.unsynced.size() + 1);
    std::string bytes = content.synced;
    for (std::size_t i = 0; i < content.unsynced.size(); ++i) {
        const Change& change = content.unsynced[i];
        const auto survives = [&] {
            return isInOrder && i != moment ? i < moment : random() % 100 < kept;
        };
        if (change.isTruncation) {
            if (survives()) {
                apply(bytes, change);
            }
            continue;
        }
        for (std::size_t begin = 0; begin < change.bytes.size();) {
            const std::size_t size =
                std::min(sector - (change.offset + begin) % sector, change.bytes.size() - begin);
            Change piece{false, change.offset + begin, change.bytes.substr(begin, size), false};
            if (survives()) {
                apply(bytes, piece);
            } else if (random() % 16 == 0) {
                std::generate(piece.bytes.begin(), piece.bytes.end(),
                              [&random] { return static_cast<char>(random()); });
                apply(bytes, piece);
            }
            begin += size;
        }
    }
    return bytes;
}

void FaultyDisk::writeSurvivors(const std::filesystem::path& folder, std::mt19937& random) const
{
    const std::lock_guard lock(m_mutex);
    std::set<std::string> names;
    for (const Directory* const directory : {&m_directory, &m_syncedDirectory}) {
        for (const auto& [name, content] : *directory) {
            names.insert(name);
        }
    }
    // Names that were made or removed since the folder was synced may be on the disk or not.
    for (const std::string& name : names) {
        const Directory& found = random() % 2 == 0 ? m_directory : m_syncedDirectory;
        const auto entry = found.find(name);
        if (entry != found.end()) {
            std::ofstream out(folder / std::filesystem::path(name).filename(), std::ios::binary);
            out << survivorOf(*entry->second, random);
        }
    }
    // The log's index needs not survive, but may, with what it held.
    for (const std::string& name : names) {
        const std::filesystem::path index = name + "-shm";
        if (random() % 2 == 0 && std::filesystem::exists(index)) {
            std::filesystem::copy_file(index, folder / index.filename());
        }
    }
}

} // namespace monitorservice::test
