#include "Libpq.h"

#include "StoreError.h"

#include <dlfcn.h>
#include <string>

namespace tarvex::store {

// NOLINTNEXTLINE(bugprone-macro-parentheses): it is a name
#define TARVEX_DEFINE(function) decltype(&::function) function = nullptr;
TARVEX_LIBPQ_FUNCTIONS(TARVEX_DEFINE)
#undef TARVEX_DEFINE

namespace {

#ifdef __APPLE__
constexpr const char *libraryName = "libpq.5.dylib";
#else
constexpr const char *libraryName = "libpq.so.5";
#endif

void *required(void *found)
{
    if (found == nullptr)
        throw CannotOpen(std::string("PostgreSQL asks for its client library, on Debian libpq5: ") +
                         ::dlerror() + ".");
    return found;
}

template<class Function>
void find(void *library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(required(::dlsym(library, name)));
}

bool load()
{
    void *const library = required(::dlopen(libraryName, RTLD_NOW));
#define TARVEX_FIND(function) find(library, #function, function);
    TARVEX_LIBPQ_FUNCTIONS(TARVEX_FIND)
#undef TARVEX_FIND
    return true;
}

} // namespace

void loadLibpq()
{
    [[maybe_unused]] static const bool isLoaded = load();
}

} // namespace tarvex::store
