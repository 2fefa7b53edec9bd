#pragma once
// The delta table lives with the sprite info that lists its entries (sprites/delta_table.h).

#include "sprites/delta_table.h"
