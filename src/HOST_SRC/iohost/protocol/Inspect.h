// Parameters and groups as JSON.
#pragma once

#include "host/ParamModel.h"
#include "protocol/Fields.h"
#include "scene/Scene.h"

/// All groups of a list with their parameters.
OrderedJson GroupsToJson(const VEKParamGroupList& lstGroup);

/// The three value members of a parameter.
OrderedJson ValuesToJson(const VEKParam& param);

/// The objects of all clips, with their matrices.
OrderedJson ObjectsToJson(const CScene& scene);
