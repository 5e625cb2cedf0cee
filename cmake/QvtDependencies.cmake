# core and data need expat, oneTBB and two header-only packages, the file store SQLite and zlib; everything else
# belongs to tools and tests.

set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)
find_package(EXPAT REQUIRED)
find_package(TBB REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(ZLIB REQUIRED)

find_path(QVT_SPARSEHASH_INCLUDE sparsehash/dense_hash_map REQUIRED)
find_path(QVT_XXHASH_INCLUDE xxhash.h REQUIRED)

# Hash maps and hash functions that leave no symbol behind.
add_library(qvt_hashing INTERFACE)
target_include_directories(qvt_hashing SYSTEM INTERFACE ${QVT_SPARSEHASH_INCLUDE} ${QVT_XXHASH_INCLUDE})
target_compile_definitions(qvt_hashing INTERFACE XXH_INLINE_ALL=)

if(QVT_TESTS)
    find_package(GTest REQUIRED)
endif()
