#ifndef SCRIPTS_MUTATION_MUTANT_H
#define SCRIPTS_MUTATION_MUTANT_H

// Every planted fault is compiled in and asleep; the environment says which one wakes. So a unit is
// compiled once, however many faults it gets. This header is included before everything else.

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qe_mutation {

/// A byte for each fault that was reached, in a file that outlives a crash; null when nobody asks.
inline unsigned char* OpenReached()
{
    const char* path = std::getenv("QE_MUTANTS_REACHED");
    if (path == nullptr) {
        return nullptr;
    }
    const int file = open(path, O_RDWR);
    struct stat status = {};
    if (file < 0 || fstat(file, &status) != 0) {
        std::abort();
    }
    void* bytes = mmap(nullptr, static_cast<size_t>(status.st_size), PROT_READ | PROT_WRITE,
                       MAP_SHARED, file, 0);
    close(file);
    return bytes == MAP_FAILED ? nullptr : static_cast<unsigned char*>(bytes);
}

inline int ReadAwake()
{
    const char* text = std::getenv("QE_MUTANT");
    return text == nullptr ? -1 : std::atoi(text);
}

inline bool IsAwake(int mutant)
{
    static const int awake = ReadAwake();
    static unsigned char* const reached = OpenReached();
    if (reached != nullptr) {
        reached[mutant] = 1;
    }
    return mutant == awake;
}

#define QE_MUTATION_PAIR(name, usual, other)                                                       \
    template <class A, class B>                                                                    \
    auto name(int mutant, const A& a, const B& b)->decltype(a usual b)                             \
    {                                                                                              \
        return IsAwake(mutant) ? (a other b) : (a usual b);                                        \
    }

QE_MUTATION_PAIR(Less, <, <=)
QE_MUTATION_PAIR(LessEqual, <=, <)
QE_MUTATION_PAIR(Greater, >, >=)
QE_MUTATION_PAIR(GreaterEqual, >=, >)
QE_MUTATION_PAIR(Equal, ==, !=)
QE_MUTATION_PAIR(NotEqual, !=, ==)
QE_MUTATION_PAIR(Plus, +, -)
QE_MUTATION_PAIR(Minus, -, +)
QE_MUTATION_PAIR(Times, *, +)
QE_MUTATION_PAIR(Over, /, *)
QE_MUTATION_PAIR(And, &, |)
QE_MUTATION_PAIR(Or, |, &)

#undef QE_MUTATION_PAIR

} // namespace qe_mutation

#endif
