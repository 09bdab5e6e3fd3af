#pragma once

#include "Jzon.h"

#include <nlohmann/json.hpp>

#include <string>

// One element of a JSON store document, seen through the model's node
// interface. It refers to the element in place: setting it changes the
// document, and the element keeps its place among its siblings.
class PlixJzonNode : public Jzon::Node
{
public:
    explicit PlixJzonNode(nlohmann::ordered_json& element) : element(element) {}

    // The element this node refers to, which identifies the node.
    const nlohmann::ordered_json* target() const { return &element; }

    bool IsString() const override { return element.is_string(); }
    bool IsNumber() const override { return element.is_number(); }
    bool IsBool() const override { return element.is_boolean(); }
    // A string gives its text; any other element its JSON text.
    std::string ToString() const override;
    // Numbers outside the signed 32-bit range are clamped to it; anything
    // that is not a number gives 0.
    int ToInt() const override;
    double ToDouble() const override;
    bool ToBool() const override;

    void Set(const std::string& text) override { element = text; }
    void Set(bool value) override { element = value; }
    void Set(double value) override { element = value; }
    void Set(int value) override { element = value; }

private:
    nlohmann::ordered_json& element;
};
