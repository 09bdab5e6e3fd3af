#pragma once

#include "PlixXML_Position.h"

#include <memory>
#include <string>
#include <vector>

class PlixDatasetValidator;
class PlixValueValidator;

// Creates the validators that validation tags declare and keeps them for as
// long as the model lives. The keyword of a "type" attribute picks the
// class; value keywords count only at value level, data-set keywords only at
// data-set level, anything else is ignored without a message. The setter
// attributes are read from "type" onward to the end of the tag.
class PlixValidationBuilder
{
public:
    PlixValidationBuilder();
    ~PlixValidationBuilder();
    PlixValidationBuilder(const PlixValidationBuilder&) = delete;
    PlixValidationBuilder& operator=(const PlixValidationBuilder&) = delete;

    void build(const char** attributes, const PlixXML_Position& position);

private:
    void addValueValidator(const std::string& keyword, PlixValue& value, const char** setters);
    void addDataSetValidator(const std::string& keyword, PlixDataSet& dataSet);

    std::vector<std::unique_ptr<PlixValueValidator>> valueValidators;
    std::vector<std::unique_ptr<PlixDatasetValidator>> dataSetValidators;
};
