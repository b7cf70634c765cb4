#pragma once

#include "TVXAlert.h"

/// Shows alerts by way of another one and notes that it did: the only sign of a request that got no answer.
class NotingAlert : public TVXAlert
{
public:
    /// Not owned.
    explicit NotingAlert(TVXAlert &shown) : m_shown(shown) {}

    void showError(const QString &description) override
    {
        wasShown = true;
        m_shown.showError(description);
    }

    bool wasShown = false;

private:
    TVXAlert &m_shown;
};
