#pragma once

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// Bytes of resident memory that some work adds at its peak, measured in a process of its own; -1 if it
/// could not be. The smaller work goes before it and does not count: it brings in the code.
template<typename Smaller, typename Work>
double peakMemoryOf(Smaller smaller, Work work)
{
    const auto peak = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    malloc_trim(0); // freed memory still at hand would hide what the work takes
    const pid_t child = fork();
    if (child == 0) {
        smaller();
        const long before = peak();
        work();
        const long grown = peak() - before;
        (void)!write(ends[1], &grown, sizeof(grown));
        _exit(0);
    }
    close(ends[1]); // so that reading ends with a child that failed
    long grown = -1;
    (void)!read(ends[0], &grown, sizeof(grown));
    waitpid(child, nullptr, 0);
    close(ends[0]);
    return static_cast<double>(grown) * 1024;
}
