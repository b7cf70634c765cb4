#pragma once

#include "TVXArea.h"
#include "TVXGoal.h"
#include "TVXSets.h"

#include <QByteArray>

/// @file
/// XML answers as records. The answer is read as parallel columns: record i takes element i of each kind, and
/// there are as many records as "id" elements. Each append function tells whether the answer was XML; one
/// that is not adds nothing.
///
/// All throw std::out_of_range when a column is shorter than the one of ids; what was appended stays.

bool appendSets(const QByteArray &answer, TVXSetsList &sets);
bool appendAreas(const QByteArray &answer, TVXAreaList &areas);
/// Leaves idOfArea 0: the answer does not carry it.
bool appendGoalsOfOneArea(const QByteArray &answer, TVXGoalList &goals);
bool appendGoalsOfAllAreas(const QByteArray &answer, TVXGoalList &goals);

/// The first goal of the answer, never an empty pointer: if the answer is not XML its name is null.
TVXGoalPtr firstGoal(const QByteArray &answer);
