#pragma once

#include "ActionOutcome.h"

/// What the main window has to tell besides the wheel itself: what is loaded, selected, missing, going on and
/// last done. Plain data; its words and what is allowed are computed from it by the functions below.
struct WindowState
{
    bool isLoaded = false; ///< a load after a sign-in has begun, whatever came of it
    bool hasAreas = false;
    bool haveAreasFailed = false; ///< no list of areas could be fetched
    bool hasSets = false;
    bool haveSetsFailed = false;
    bool isSetSelected = false;
    bool isInDoubt = false; ///< nobody knows whether the last change was stored
    QString signedInAs;     ///< the login, of any length; empty before signing in
    QString lastDone;       ///< what the last action came to, in sentences; empty if there is nothing to tell

    bool operator==(const WindowState &) const = default;
};

/// What the user can have done.
struct EnabledCommands
{
    bool signIn = false;
    bool reload = false;
    bool newSet = false;
    bool changeSet = false; ///< rename, delete, draw a goal of it, print it
    bool renameAreas = false;
    bool selectSet = false;

    bool operator==(const EnabledCommands &) const = default;
};

namespace WindowWords {
/// The line at the bottom of the window: what was done and what is missing, or what to do next.
QString statement(const WindowState &state);
/// What the empty set selector shows.
QString placeholder(const WindowState &state);
/// "Signed in as ...", or empty.
QString account(const WindowState &state);
EnabledCommands enabledCommands(const WindowState &state);
/// Whether fetching anew would help, so that it is to be offered beside the statement.
bool isReloadOffered(const WindowState &state);

/// What an action came to, as a sentence.
QString sentenceFor(const ActionOutcome &outcome);
/// That an answer lacked part of what it should have.
QString incompleteAnswer();
/// That a reload did not bring the sets or the areas, of which those from before stay on show; empty when
/// both came.
QString reloadOutcome(bool haveSetsCome, bool haveAreasCome);
} // namespace WindowWords
