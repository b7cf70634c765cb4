#include "Visit.h"

#include "Wipe.h"

namespace tarvex::pages {

Visit::~Visit()
{
    security::wipe(request.body);
    security::wipe(signUpBody);
}

} // namespace tarvex::pages
