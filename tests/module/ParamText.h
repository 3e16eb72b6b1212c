// Parameters and their groups as text, to be compared and kept in files.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "host/ParamModel.h"

/// The cells of a parameter, or of each group and its parameters. Those that a new parameter has anyway aren't named:
/// no range, no flags, zero, no text, no choices, available.
nlohmann::ordered_json CellsOf(const VEKParam& param);
nlohmann::ordered_json CellsOf(const VEKParamGroupList& lstGroup);

/// The same as JSON text, a line for each group and each parameter.
std::string TextOf(const nlohmann::ordered_json& groups);
std::string TextOf(const VEKParamGroupList& lstGroup);
