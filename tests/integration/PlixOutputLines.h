#pragma once

#include <string>
#include <vector>

// Questions the tests ask about the lines a service wrote.
bool plixHasLine(const std::vector<std::string>& lines, const std::string& line);
int plixCountLines(const std::vector<std::string>& lines, const std::string& line);
// True when every expected line appears, in this order (others may lie between).
bool plixLinesInOrder(const std::vector<std::string>& lines,
                      const std::vector<std::string>& expected);
// True when the expected lines appear one right after the other somewhere.
bool plixLinesAdjacent(const std::vector<std::string>& lines,
                       const std::vector<std::string>& expected);
// The last count lines (all of them when there are fewer).
std::vector<std::string> plixLastLines(const std::vector<std::string>& lines, std::size_t count);
// True when some line contains the text.
bool plixAnyLineContains(const std::vector<std::string>& lines, const std::string& text);
