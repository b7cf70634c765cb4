#pragma once

#include <QLatin1String>

/// Where the Help menu's links lead: to the pages of the service that the client is built for, whose operator
/// may lead on from the latter two.
namespace WebAddresses {
inline constexpr QLatin1String webSite(TARVEX_WEB_SITE);
inline constexpr QLatin1String twitter(TARVEX_WEB_SITE "twitter");
inline constexpr QLatin1String facebook(TARVEX_WEB_SITE "facebook");
} // namespace WebAddresses
