#pragma once

#include <QLatin1String>

/// Where the Help menu's links lead. Whoever runs a service of their own puts its pages here; until then
/// these are addresses in a domain that is reserved for examples.
namespace WebAddresses {
inline constexpr QLatin1String webSite("https://www.example.org/tarvex-cloud/");
inline constexpr QLatin1String twitter("https://www.example.org/tarvex-cloud/twitter");
inline constexpr QLatin1String facebook("https://www.example.org/tarvex-cloud/facebook");
} // namespace WebAddresses
