// Internal declarations of the matrix functions.
#pragma once

#include <cstdint>

// The decision table of M_GetMatrixType: *type from the properties of the matrix. Returns 0; type is required.
std::int32_t Mp_WhatType(bool perspective, bool translate, bool scale, bool rotate, int* type);
