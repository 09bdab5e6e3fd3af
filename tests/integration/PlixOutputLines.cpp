#include "PlixOutputLines.h"

#include <algorithm>

bool plixHasLine(const std::vector<std::string>& lines, const std::string& line)
{
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

int plixCountLines(const std::vector<std::string>& lines, const std::string& line)
{
    return static_cast<int>(std::count(lines.begin(), lines.end(), line));
}

bool plixLinesInOrder(const std::vector<std::string>& lines,
                      const std::vector<std::string>& expected)
{
    auto next = lines.begin();
    for (const auto& line : expected) {
        next = std::find(next, lines.end(), line);
        if (next == lines.end()) {
            return false;
        }
        ++next;
    }
    return true;
}

bool plixLinesAdjacent(const std::vector<std::string>& lines,
                       const std::vector<std::string>& expected)
{
    return std::search(lines.begin(), lines.end(), expected.begin(), expected.end()) != lines.end();
}

bool plixAnyLineContains(const std::vector<std::string>& lines, const std::string& text)
{
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
        return line.find(text) != std::string::npos;
    });
}

std::vector<std::string> plixLastLines(const std::vector<std::string>& lines, std::size_t count)
{
    return std::vector<std::string>(lines.end() - std::min(count, lines.size()), lines.end());
}
