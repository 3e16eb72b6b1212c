// The choices of a "Layer" input and the host's layer numbers that they stand for.
#pragma once

#include <afxwin.h>

inline constexpr int LAYER_CHOICE_COUNT = 17;

/// The layer number of a choice. An index past the choices continues the last ones; a negative one counts as the first.
int LayerNumberOfChoice(int nIndex);

/// Append the labels of all choices, in index order.
void FillLayerLabels(CStringArray& arChoice);
