// HDF5: a group for each node and a dataset for each value, in a file; only numbers, which favours it.
#include <hdf5.h>

#include <cstdio>

#include "harness/Harness.h"

namespace {

using bench::Arguments;
using bench::Result;

void require(hid_t id) { bench::require(id >= 0, "refused"); }

std::string pathOf(const Arguments& arguments) { return arguments.text("folder") + "/values.h5"; }

std::string numbered(const char* beginning, std::uint64_t number) {
    return beginning + std::to_string(number);
}

void writeValue(hid_t group, const std::string& name, hid_t space, double value) {
    const hid_t set =
        H5Dcreate2(group, name.c_str(), H5T_NATIVE_DOUBLE, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    require(set);
    require(H5Dwrite(set, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, &value));
    H5Dclose(set);
}

// Nodes of ten values.
void writeValues(hid_t file, std::uint64_t count) {
    const hid_t space = H5Screate(H5S_SCALAR);
    for (std::uint64_t node = 0; node < count / 10; ++node) {
        const hid_t group =
            H5Gcreate2(file, numbered("part_", node).c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
        require(group);
        for (std::uint64_t i = 0; i < 10; ++i)
            writeValue(group, numbered("value_", i), space, static_cast<double>(node * 10 + i));
        H5Gclose(group);
    }
    H5Sclose(space);
}

// In memory, without a file behind it.
void build(const Arguments& arguments, Result& result) {
    const std::uint64_t count = arguments.number("size", 20'000);
    const hid_t access = H5Pcreate(H5P_FILE_ACCESS);
    require(H5Pset_fapl_core(access, std::size_t{1} << 20, 0));
    bench::repeat(arguments, result, [&] {
        const hid_t file = H5Fcreate("memory.h5", H5F_ACC_TRUNC, H5P_DEFAULT, access);
        require(file);
        writeValues(file, count);
        H5Fclose(file);
        return count;
    });
    H5Pclose(access);
}

void make(const Arguments& arguments, Result&) {
    const hid_t file = H5Fcreate(pathOf(arguments).c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
    require(file);
    writeValues(file, arguments.number("size", 20'000));
    H5Fclose(file);
}

void open(const Arguments& arguments, Result& result) {
    const std::uint64_t node = arguments.number("size", 20'000) / 20;
    const std::string path = pathOf(arguments);
    const std::uint64_t before = bench::residentBytes();
    const double start = bench::cpuSeconds();
    const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
    require(file);
    const hid_t set = H5Dopen2(file, (numbered("part_", node) + "/value_5").c_str(), H5P_DEFAULT);
    require(set);
    double value = 0;
    require(H5Dread(set, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, &value));
    H5Dclose(set);
    H5Fclose(file);
    result.set("seconds", bench::cpuSeconds() - start);
    result.set("units", std::uint64_t{1});
    result.set("bytes", bench::peakBytes() - before);
    bench::require(value == static_cast<double>(node * 10 + 5), "something else was read");
}

}  // namespace

int main(int count, char** words) {
    return bench::run(count, words, {{"build", build}, {"make", make}, {"open", open}});
}
