#pragma once

#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// Bytes of resident memory that some work adds at its peak, measured in a process of its own; if it cannot
/// be, the program ends. The smaller work goes before it and does not count: it brings in the code.
template<typename Smaller, typename Work>
double peakMemoryOf(Smaller smaller, Work work)
{
    const auto peak = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    const auto fail = [] {
        std::perror("measuring memory");
        std::exit(1);
    };
    int ends[2];
    if (pipe(ends) != 0)
        fail();
    malloc_trim(0); // freed memory still at hand would hide what the work takes
    const pid_t child = fork();
    if (child < 0)
        fail();
    if (child == 0) {
        smaller();
        const long before = peak();
        work();
        const long grown = peak() - before;
        (void)!write(ends[1], &grown, sizeof(grown));
        _exit(0);
    }
    close(ends[1]); // so that reading ends with a child that failed
    long grown = 0;
    if (read(ends[0], &grown, sizeof(grown)) != sizeof(grown))
        fail();
    waitpid(child, nullptr, 0);
    close(ends[0]);
    return static_cast<double>(grown) * 1024;
}
