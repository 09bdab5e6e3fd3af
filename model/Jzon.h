#pragma once

#include <string>

// The view of a JSON document node that the value model needs: kind tests,
// typed reads and a settable scalar. The JSON store implements it; the model
// never sees the JSON library itself.
namespace Jzon {

class Value
{
public:
    virtual ~Value() = default;
    virtual void Set(const std::string& text) = 0;
    virtual void Set(bool value) = 0;
    virtual void Set(double value) = 0;
    virtual void Set(int value) = 0;
};

// A node is its own settable scalar: one interface, so that a store keeps one
// table pointer in each of the many nodes it hands out.
class Node : public Value
{
public:
    virtual bool IsString() const = 0;
    virtual bool IsNumber() const = 0;
    virtual bool IsBool() const = 0;
    virtual std::string ToString() const = 0;
    virtual int ToInt() const = 0;
    virtual double ToDouble() const = 0;
    virtual bool ToBool() const = 0;
    Value& AsValue() { return *this; }
};

} // namespace Jzon
