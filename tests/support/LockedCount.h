// Counting under critical sections in a way that a lock which lets two
// takers in at once cannot hide: each step reads the count, yields the
// processor, and writes the count plus one. Steps that overlap lose counts.
#pragma once

#include <chrono>
#include <fstream>
#include <string>
#include <thread>

#include "kticore/core/Threads.h"

namespace kt::test {

// A count in memory, for the threads of one process.
struct CountInMemory {
    volatile long value = 0;
    long Read() const { return value; }
    void Write(long next) { value = next; }
};

// A count in a file, for the threads of several processes.
struct CountInFile {
    std::string name;
    long Read() const {
        long value = 0;
        std::ifstream(name) >> value;
        return value;
    }
    void Write(long next) const { std::ofstream(name, std::ios::trunc) << next; }
};

template <class Count>
void StepUnder(Count& count) {
    const long seen = count.Read();
    std::this_thread::yield();
    count.Write(seen + 1);
}

// Steps inside `section` until `duration` has passed; the steps taken.
template <class Count>
long CountInSection(ICritSect* section, Count& count, std::chrono::milliseconds duration) {
    const auto end = std::chrono::steady_clock::now() + duration;
    long steps = 0;
    for (; std::chrono::steady_clock::now() < end; ++steps) {
        section->Enter();
        StepUnder(count);
        section->Leave();
    }
    return steps;
}

}  // namespace kt::test
