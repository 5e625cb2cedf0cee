// Runs something on a thread with little stack.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <functional>

namespace norvane::platform::test {

// Waits for the work to end. What recurses over deep data crashes here.
inline void onSmallStack(const std::function<void()>& work, std::size_t bytes = std::size_t{256} << 10) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
    pthread_t thread;
    const auto run = [](void* given) -> void* {
        (*static_cast<const std::function<void()>*>(given))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
    pthread_attr_destroy(&attributes);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
}

}  // namespace norvane::platform::test
