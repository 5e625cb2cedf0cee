// LMDB as a store of records of 64 bytes.
#include <lmdb.h>

#include <cstdio>

#include "harness/Harness.h"

namespace {

using bench::Arguments;
using bench::Result;

void check(int status) { bench::require(status == MDB_SUCCESS, mdb_strerror(status)); }

class Environment {
  public:
    explicit Environment(const std::string& path) : path_(path) {
        remove();
        check(mdb_env_create(&environment_));
        check(mdb_env_set_mapsize(environment_, std::size_t{1} << 30));
        check(mdb_env_open(environment_, path_.c_str(), MDB_NOSUBDIR, 0600));
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment() {
        mdb_env_close(environment_);
        remove();
    }

    // Runs `work` with a transaction and its one database, and commits.
    template <class Work>
    void transact(Work work) {
        MDB_txn* transaction = nullptr;
        MDB_dbi database{};
        check(mdb_txn_begin(environment_, nullptr, 0, &transaction));
        check(mdb_dbi_open(transaction, nullptr, MDB_INTEGERKEY, &database));
        work(transaction, database);
        check(mdb_txn_commit(transaction));
    }

  private:
    void remove() {
        std::remove(path_.c_str());
        std::remove((path_ + "-lock").c_str());
    }

    std::string path_;
    MDB_env* environment_ = nullptr;
};

void put(MDB_txn* transaction, MDB_dbi database, std::uint64_t number, std::string& bytes) {
    MDB_val key{sizeof number, &number};
    MDB_val data{bytes.size(), bytes.data()};
    check(mdb_put(transaction, database, &key, &data, 0));
}

void append(const Arguments& arguments, Result& result) {
    const std::uint64_t count = arguments.number("size", 100'000);
    std::string bytes(64, 'a');
    Environment environment(arguments.text("folder") + "/append.lmdb");
    const double start = bench::cpuSeconds();
    environment.transact([&](MDB_txn* transaction, MDB_dbi database) {
        for (std::uint64_t i = 0; i < count; ++i) put(transaction, database, i, bytes);
    });
    result.set("seconds", bench::cpuSeconds() - start);
    result.set("units", count);
}

void commit(const Arguments& arguments, Result& result) {
    const std::uint64_t times = arguments.number("times", 50);
    std::string bytes(64, 'a');
    Environment environment(arguments.text("folder") + "/commit.lmdb");
    const double start = bench::wallSeconds();
    for (std::uint64_t i = 0; i < times; ++i)
        environment.transact([&](MDB_txn* transaction, MDB_dbi database) {
            bytes[0] = static_cast<char>('b' + i % 20);
            put(transaction, database, 0, bytes);
        });
    result.set("seconds", bench::wallSeconds() - start);
    result.set("units", times);
}

}  // namespace

int main(int count, char** words) {
    return bench::run(count, words, {{"append", append}, {"commit", commit}});
}
