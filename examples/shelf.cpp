// A store of one's own: it keeps the records in a map, and lets a model be made in it.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <qvt/qvt.hpp>
#include <stdexcept>
#include <string>

namespace {

class ShelfStore : public qvt::Store {
  public:
    ~ShelfStore() override {}

    void read(std::uint32_t offset, void* buffer, std::uint32_t size) override {
        const auto found = records_.find(offset);
        if (found != records_.end())
            std::memcpy(buffer, found->second.data(), std::min<std::size_t>(size, found->second.size()));
        else if (size != 1)  // one byte of nothing stays as it is
            missing();
    }
    // Guards are nested within a thread; a store for one thread could answer null.
    Guard* lock() override { return new Key(mutex_); }
    void flush() override {}
    std::uint32_t version() override { return version_; }
    void setVersion(std::uint32_t version) override { version_ = version; }
    std::uint64_t size() override { return next_; }
    // No offset is given out twice, not even after its record was removed.
    std::uint32_t append(const void* buffer, std::uint32_t size) override {
        if (next_ == BADOFF) throw std::length_error("the shelf is full");
        records_.emplace(next_, bytes(buffer, size));
        return next_++;
    }
    void extend(std::uint32_t offset, const void* buffer, std::uint32_t size) override {
        at(offset) += bytes(buffer, size);
    }
    void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool) override {
        at(offset) = bytes(buffer, size);
    }
    std::uint32_t recordSize(std::uint32_t offset) override {
        const auto found = records_.find(offset);
        return found == records_.end() ? 0 : static_cast<std::uint32_t>(found->second.size());
    }
    void remove(std::uint32_t offset) override { records_.erase(offset); }

    std::size_t recordCount() const { return records_.size(); }

  private:
    struct Key : Guard {
        explicit Key(std::recursive_mutex& mutex) : lock(mutex) {}
        std::lock_guard<std::recursive_mutex> lock;
    };

    static std::string bytes(const void* buffer, std::uint32_t size) {
        return size ? std::string(static_cast<const char*>(buffer), size) : std::string();
    }
    [[noreturn]] static void missing() { throw std::out_of_range("there is no such record"); }
    std::string& at(std::uint32_t offset) {
        const auto found = records_.find(offset);
        if (found == records_.end()) missing();
        return found->second;
    }

    std::map<std::uint32_t, std::string> records_;
    std::recursive_mutex mutex_;
    std::uint32_t next_ = 0;
    std::uint32_t version_ = 0;
};

}  // namespace

int main() {
    ShelfStore shelf;
    {
        const auto hall = qvt::top(shelf, "hall");
        hall.makeNode("p1").make("power", 7.5, "Kilowatt");
        hall.makeNode("p2");
    }
    std::printf("%zu records\n", shelf.recordCount());
    qvt::find(shelf, "hall").remove("p2");
    std::printf("%zu records\n", shelf.recordCount());
    std::printf("%g\n", qvt::find(shelf, "hall.p1")["power"].value<double>().value_or(0));
}
