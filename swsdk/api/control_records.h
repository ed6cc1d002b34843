// The records of the control interface as lists of their fields, like those of the SDK.
#pragma once

#include <swsdk/board.h>
#include <swsdk/fault.h>
#include <swsdk/field.h>
#include <swsdk/frames.h>

#include "api/calls/records.h"

// In the namespace of the records, where the templates that show and parse values find them.
std::span<const api::Field> fields(const swsdk_board*);
std::span<const api::Field> fields(const swsdk_temperature*);
std::span<const api::Field> fields(const swsdk_fault*);
std::span<const api::Field> fields(const swsdk_frame*);
std::span<const api::Field> fields(const swsdk_verdict*);
std::span<const api::Field> fields(const swsdk_netif*);
