// Another process, that does with a store file what it is told.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>

#include "unit/filestore/Backends.h"

namespace norvane::platform::core::storage::datastore {

// It begins before the test opens anything, so that it shares nothing with it but the files.
class Peer {
  public:
    explicit Peer(std::string path) : path_(std::move(path)) {
        EXPECT_EQ(::pipe(orders_.data()), 0);
        EXPECT_EQ(::pipe(answers_.data()), 0);
        process_ = ::fork();
        if (process_ == 0) serve();
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    ~Peer() {
        kill();
        for (const int end : {orders_[0], orders_[1], answers_[0], answers_[1]}) ::close(end);
    }

    pid_t process() const { return process_; }

    // Each answers true if it was done.
    bool write() { return ask('w'); }   // opens the file for writing and keeps it open
    bool read() { return ask('r'); }    // the same for reading
    bool close() { return ask('c'); }   // closes it
    bool isEven() { return ask('e'); }  // goes to the newest revision: have all its records the same bytes?

    // As by the system, in the middle of whatever it does.
    void kill() {
        if (process_ <= 0) return;
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
        process_ = 0;
    }

  private:
    bool ask(char order) {
        char answer = 0;
        return ::write(orders_[1], &order, 1) == 1 && ::read(answers_[0], &answer, 1) == 1 && answer == 'y';
    }

    [[noreturn]] void serve() {
        char order = 0;
        ::close(orders_[1]);
        while (::read(orders_[0], &order, 1) == 1) {
            char answer = 'n';
            try {
                answer = obey(order) ? 'y' : 'n';
            } catch (const std::exception&) {
            }
            if (::write(answers_[1], &answer, 1) != 1) break;
        }
        ::_exit(0);
    }

    bool obey(char order) {
        switch (order) {
            case 'w':
                backend_ = openWriter(path_);
                return true;
            case 'r':
                backend_ = openReader(path_);
                return true;
            case 'c':
                backend_.reset();
                return true;
            default:
                backend_->refresh();
                return areAllTheSame(recordsOf(*backend_));
        }
    }

    static bool areAllTheSame(const Records& records) {
        for (const auto& [offset, bytes] : records)
            if (bytes != records.begin()->second) return false;
        return !records.empty();
    }

    std::string path_;
    std::array<int, 2> orders_{};
    std::array<int, 2> answers_{};
    pid_t process_ = 0;
    std::unique_ptr<FileBackend> backend_;
};

}  // namespace norvane::platform::core::storage::datastore
