#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace tarvex::security {

/// Overwrites what is needed no more in a way that no compiler takes for idle.
void wipe(void *begin, std::size_t size);

/// The same for a text, which is empty then.
void wipe(std::string &secret);

/// Overwrites all memory that it takes back.
template<class Value>
struct WipingAllocator : std::allocator<Value>
{
    void deallocate(Value *memory, std::size_t count)
    {
        wipe(memory, count * sizeof(Value));
        std::allocator<Value>::deallocate(memory, count);
    }
};

} // namespace tarvex::security
