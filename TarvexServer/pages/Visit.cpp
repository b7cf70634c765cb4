#include "Visit.h"

#include "Wipe.h"

namespace tarvex::pages {

Visit::~Visit()
{
    forget();
}

void Visit::forget()
{
    security::wipe(request.body);
    security::wipe(signUpBody);
    form = {};
    next = {};
    onceSignedUp = {};
}

} // namespace tarvex::pages
