#pragma once

// Reads a decimal integer with strtol rules (leading blanks and a sign
// allowed, reading stops at the first non-digit, no digits give 0) and
// clamps it to the int range, as strtol does on the 32-bit device where long
// is as wide as int: the host then reads configuration numbers as the device
// does.
int plixStrtoInt(const char* text);
