#include "stores/file/FileBackend.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#include "stores/file/LiveMap.h"
#include "stores/file/Log.h"
#include "stores/file/NewFile.h"
#include "stores/file/Session.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;
using Options = FileDataStore::Options;

// What both kinds of opening have in common.
class OpenBackend : public FileBackend {
  public:
    OpenBackend(const std::string& path, OpenFile::Purpose purpose)
        : session_(std::make_unique<Session>(path, purpose)) {}
    // What a forked process has of the session is left lying: to close it would drop the locks of the one
    // that has opened it, and write its log back.
    ~OpenBackend() override {
        if (session_ && !isFromHere()) static_cast<void>(session_.release());
    }

    const StoreMeta& meta() const override { return base_.meta; }
    bool load(std::uint32_t offset, LoadTarget& target) override;
    FileDataStore::LogStatus logStatus() const override;

  protected:
    // Makes the connection one that reads the revision of `base_`.
    virtual void prepareToRead() = 0;

    const std::string& path() const { return session_->path(); }
    Connection& connection() { return session_->connection(); }
    bool isFromHere() const { return session_->file().isFromHere(); }
    void requireOpen() const {
        if (!session_) throw StoreError(Code::closed, "the store is closed", IDataStore::BADOFF);
        if (!isFromHere()) fail(Code::wrongState, path(), "opened by another process");
    }

    std::unique_ptr<Session> session_;
    LiveMap live_;
    MetaRow base_;
};

bool OpenBackend::load(std::uint32_t offset, LoadTarget& target) {
    prepareToRead();
    try {
        const bool isThere = connection().load(offset, target);
        const bool isLive = offset < base_.meta.next && live_.isLive(connection(), offset);
        if (isThere && !isLive) failDamaged(path(), "a record that the directory does not know", offset);
        if (isLive && !isThere) failDamaged(path(), "a record is missing", offset);
        return isThere;
    } catch (const StoreError& error) {
        if (error.code() != Code::damaged || error.offset() == offset) throw;
        throw StoreError(error.code(), error.what(), offset);
    }
}

FileDataStore::LogStatus OpenBackend::logStatus() const {
    requireOpen();
    std::vector<pid_t> readers = readersOf(path());
    // This connection's own reading is over before it would keep the log from being emptied.
    if (!session_->file().isSharedHere()) std::erase(readers, ::getpid());
    return {logSizeOf(path()), std::move(readers)};
}

class Reader final : public OpenBackend {
  public:
    explicit Reader(const std::string& path) : OpenBackend(path, OpenFile::Purpose::read) { begin(); }

    bool load(std::uint32_t offset, LoadTarget& target) override {
        if (!session_) requireOpen();
        return session_->reading([&] { return OpenBackend::load(offset, target); });
    }
    void commit(std::span<const Change>, const StoreMeta&) override { refuse(); }
    void compact() override { refuse(); }

    bool refresh() override {
        requireOpen();
        const MetaRow before = base_;
        if (session_->seesLog())
            connection().endReading();
        else
            session_->disconnect();
        begin();
        return base_ != before;
    }

    void close() override {
        if (!session_) return;
        requireOpen();
        session_.reset();
    }

  protected:
    // After a refresh that has failed, the revision from before may be there still, or not.
    void prepareToRead() override {
        requireOpen();
        if (session_->isConnected() && connection().isReading()) return;
        const MetaRow before = base_;
        begin();
        if (base_ == before) return;
        base_ = before;
        connection().endReading();
        fail(Code::notReadable, path(), "the revision that was read is gone");
    }

  private:
    [[noreturn]] void refuse() const {
        requireOpen();
        fail(Code::readOnly, path(), "opened for reading only");
    }

    void begin() {
        live_.clear();
        base_ = session_->reading([&] {
            if (!session_->isConnected()) session_->connectToRead();
            return connection().beginReading();
        });
    }
};

// New records on their way to the file, many at once. The bytes are borrowed until `finish`.
class NewRows {
  public:
    NewRows(Connection& connection, std::uint32_t partSize) : connection_(connection), partSize_(partSize) {}

    void add(const NewRow& row) {
        if (row.bytes.size() > kSmallestPart) return connection_.add(row.offset, row.bytes, partSize_);
        rows_[count_++] = row;
        if (count_ < rows_.size()) return;
        connection_.add(rows_);
        count_ = 0;
    }
    void finish() {
        for (std::size_t i = 0; i < count_; ++i) connection_.add(rows_[i].offset, rows_[i].bytes, partSize_);
        count_ = 0;
    }

  private:
    Connection& connection_;
    const std::uint32_t partSize_;
    std::array<NewRow, kNewRows> rows_;
    std::size_t count_ = 0;
};

class Writer final : public OpenBackend {
  public:
    Writer(const std::string& path, const Options& options)
        : OpenBackend(path, OpenFile::Purpose::write),
          partSize_(options.partSize),
          logLimit_(options.walLimit) {
        session_->connectToWrite();
        base_ = connection().beginReading();
        connection().endReading();
    }
    ~Writer() override {
        if (session_ && isFromHere()) Writer::close();
    }

    void commit(std::span<const Change> changes, const StoreMeta& meta) override;
    bool refresh() override;
    void compact() override;
    void close() override;

  protected:
    void prepareToRead() override;

  private:
    void repairConnection();
    void adopt(const MetaRow& found);
    void beginCommit();
    void apply(std::span<const Change> changes, const StoreMeta& meta);
    void put(std::span<const Change> changes);
    void giveUpConnection() noexcept;
    void requireFile();
    void trimLog();

    const std::uint32_t partSize_;
    const std::uint64_t logLimit_;
    std::uint64_t trimAbove_ = 0;   // what the log may grow to before it is tried again to empty it
    std::optional<LogEnd> logEnd_;  // before the attempt to write that is under way or has failed
    MetaRow attempt_;               // what the last commit would have made of `base_`
    bool isDoubtful_ = false;       // a write has failed on this connection
};

void Writer::prepareToRead() {
    requireOpen();
    repairConnection();
    if (connection().isReading()) return;
    try {
        adopt(connection().beginReading());
    } catch (...) {
        connection().endReading();
        throw;
    }
}

// After a failed write nothing is tried again on the same connection: what SQLite and the system have in
// memory need not be what is on the disk. What the failed attempt may have left in the log is taken out
// first.
void Writer::repairConnection() {
    if (!isDoubtful_) return;
    if (session_->isConnected()) {
        connection().rollBack();
        if (logEnd_ && !logEnd_->cutBack(connection().database()))
            fail(Code::notWritable, path(), "what a failed commit has left cannot be taken back");
        session_->abandon();
    }
    live_.clear();
    logEnd_.reset();
    session_->connectToWrite();
    isDoubtful_ = false;
}

// Goes on from what is in the file, which is what was committed here last, or what a commit that seemed to
// have failed has made nevertheless.
void Writer::adopt(const MetaRow& found) {
    if (found == base_) return;
    if (found != attempt_) fail(Code::fenced, path(), "another writer has changed the file");
    base_ = found;
    live_.clear();
}

void Writer::commit(std::span<const Change> changes, const StoreMeta& meta) {
    requireOpen();
    repairConnection();
    requireFile();
    beginCommit();
    try {
        apply(changes, meta);
    } catch (...) {
        giveUpConnection();
        throw;
    }
    logEnd_.reset();
    base_ = attempt_;
    live_.keep();
    try {
        trimLog();
    } catch (const std::bad_alloc&) {
        // The commit has been made; the next one trims.
    }
}

void Writer::beginCommit() {
    connection().endReading();
    connection().beginWriting();
    try {
        adopt(connection().meta());
        logEnd_ = LogEnd::of(connection().database());
        requireFile();
    } catch (...) {
        connection().rollBack();
        throw;
    }
}

void Writer::apply(std::span<const Change> changes, const StoreMeta& meta) {
    live_.drop();
    put(changes);
    live_.write(connection(), blockCount(base_.meta.next), blockCount(meta.next));
    attempt_ = {meta, newToken(), base_.token};
    attempt_.meta.revision = base_.meta.revision + 1;
    connection().putMeta(attempt_);
    connection().commit();
}

void Writer::put(std::span<const Change> changes) {
    const std::uint64_t blocks = blockCount(base_.meta.next);
    const bool anyParts = connection().anyParts();
    NewRows added(connection(), partSize_);
    for (const Change& change : changes) {
        const std::span<const std::byte> bytes(change.bytes, change.size);
        const bool wasLive = live_.set(connection(), change.offset, !change.isRemoved, blocks);
        if (wasLive && anyParts) connection().eraseParts(change.offset);
        if (!wasLive && !change.isRemoved) added.add({change.offset, bytes});
        if (wasLive && !change.isRemoved) connection().change(change.offset, bytes, partSize_);
        if (wasLive && change.isRemoved) connection().erase(change.offset);
    }
    added.finish();
}

void Writer::giveUpConnection() noexcept {
    isDoubtful_ = true;
    live_.drop();
    try {
        repairConnection();
    } catch (const std::exception&) {
        // It is tried again before the next use, which tells of the failure.
    }
}

// A file that was removed could be written none the less, and nobody would find it.
void Writer::requireFile() {
    if (!session_->file().isStillThere()) fail(Code::notWritable, path(), "the file was removed or replaced");
    if (connection().isReading() && !isLogStillThere(connection().database()))
        fail(Code::notWritable, path(), "the log of the file was removed or replaced");
}

// While a reader needs the log, it is not tried at every commit again.
void Writer::trimLog() {
    const std::uint64_t size = logSizeOf(path());
    if (size <= std::max(logLimit_, trimAbove_)) return;
    const int answer = emptyLog(connection().database());
    trimAbove_ = answer == SQLITE_OK ? 0 : size + logLimit_ / 4;
    if (answer == SQLITE_OK || answer == SQLITE_BUSY) return;
    giveUpConnection();
}

bool Writer::refresh() {
    prepareToRead();
    return false;
}

void Writer::compact() {
    requireOpen();
    repairConnection();
    beginCommit();
    connection().rollBack();
    try {
        connection().database().run("PRAGMA temp_store=FILE", Doing::writing);
        connection().database().run("VACUUM", Doing::writing);
        logEnd_.reset();
        connection().database().run("PRAGMA temp_store=MEMORY", Doing::writing);
    } catch (...) {
        giveUpConnection();
        throw;
    }
    trimAbove_ = 0;
    const int answer = emptyLog(connection().database());
    if (answer != SQLITE_OK && answer != SQLITE_BUSY) giveUpConnection();
}

void Writer::close() {
    if (!session_) return;
    requireOpen();
    if (isDoubtful_) giveUpConnection();
    if (isDoubtful_)
        session_->abandon();
    else
        session_->finish();
    session_.reset();
}

void makeFile(const std::string& path) {
    NewFile file(path);
    file.connection().putMeta({{}, newToken(), 0});
    file.publish();
}

}  // namespace

std::unique_ptr<FileBackend> FileBackend::open(const std::string& path, const Options& options) {
    if (options.access == FileDataStore::Access::readOnly) return std::make_unique<Reader>(resolved(path));
    if (options.creation == FileDataStore::Creation::always) makeFile(resolvedInFolder(path));
    if (options.creation == FileDataStore::Creation::ifMissing && ::access(path.c_str(), F_OK) != 0) {
        try {
            makeFile(resolvedInFolder(path));
        } catch (const StoreError& error) {
            // Somebody else has made it in the meantime.
            if (error.code() != Code::exists) throw;
        }
    }
    return std::make_unique<Writer>(resolved(path), options);
}

}  // namespace norvane::platform::core::storage::datastore
