#pragma once

#include "vek/PanelRemoteCtrl.h"
