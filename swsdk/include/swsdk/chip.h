/**
 * @file swsdk/chip.h
 * The virtual chip itself: the board that it is on, what happens to it, and its tables.
 */
#ifndef SWSDK_CHIP_H
#define SWSDK_CHIP_H

#include <swsdk/board.h>
#include <swsdk/events.h>
#include <swsdk/kernel_commands.h>
#include <swsdk/state.h>
#include <swsdk/tables.h>

#endif
