#pragma once

#include <string>

// One JSON store file declared by a Panel_file element.
class PlixFile
{
public:
    PlixFile() = default;
    virtual ~PlixFile() = default;
    PlixFile(const PlixFile&) = default;
    PlixFile& operator=(const PlixFile&) = default;

    void setName(std::string name) { this->name = std::move(name); }
    std::string getName() const { return name; }
    void setPath(std::string path) { this->path = std::move(path); }
    std::string getPath() const { return path; }
    void setType(std::string type) { this->type = std::move(type); }
    std::string getType() const { return type; }

    void setReWrite() { rewriteFlag = true; }
    void resetReWrite() { rewriteFlag = false; }
    bool rewrite() const { return rewriteFlag; }

private:
    std::string name;
    std::string path;
    std::string type;
    bool rewriteFlag = false;
};
