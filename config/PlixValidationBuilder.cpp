#include "PlixValidationBuilder.h"

#include "PlixConnectionpriorityValidator.h"
#include "PlixDataSet.h"
#include "PlixDataSetNetworkValidator.h"
#include "PlixDataSetPortValidator.h"
#include "PlixGatewayValidator.h"
#include "PlixIPAddressValidator.h"
#include "PlixMinMaxValidator.h"
#include "PlixPossibleIntValuesValidator.h"
#include "PlixStringLentghValidator.h"
#include "PlixStringValidator.h"
#include "PlixSubnetMaskValidator.h"
#include "PlixTolvarixPasswordValidator.h"
#include "PlixValue.h"
#include "PlixXML_Attributes.h"
#include "PlixNumber.h"

#include <cstdlib>
#include <functional>
#include <map>

namespace {
using ValueFactory = std::function<std::unique_ptr<PlixValueValidator>(PlixValue&, const char**)>;
using DataSetFactory = std::function<std::unique_ptr<PlixDatasetValidator>(PlixDataSet&)>;

// Bounds are read with strtol rules: base 10, "abc" gives 0.
int toInt(const char* text)
{
    return plixStrtoInt(text);
}

template <typename Validator>
std::unique_ptr<PlixValueValidator> plain(PlixValue& value, const char**)
{
    return std::make_unique<Validator>(value);
}

template <typename Validator>
std::unique_ptr<PlixValueValidator> bounded(PlixValue& value, const char** setters,
                                            void (Validator::*setMin)(int),
                                            void (Validator::*setMax)(int))
{
    auto validator = std::make_unique<Validator>(value);
    plixForEachAttributeNamed(setters, "min",
                              [&](const char* text) { ((*validator).*setMin)(toInt(text)); });
    plixForEachAttributeNamed(setters, "max",
                              [&](const char* text) { ((*validator).*setMax)(toInt(text)); });
    return validator;
}

template <typename Validator>
std::unique_ptr<PlixValueValidator> listed(PlixValue& value, const char** setters)
{
    auto validator = std::make_unique<Validator>(value);
    plixForEachAttributeNamed(setters, "pv",
                              [&](const char* text) { validator->setPossibleValues(text); });
    return validator;
}

template <typename Validator>
std::unique_ptr<PlixDatasetValidator> ofDataSet(PlixDataSet& dataSet)
{
    return std::make_unique<Validator>(dataSet);
}

const std::map<std::string, ValueFactory>& valueFactories()
{
    static const std::map<std::string, ValueFactory> factories = {
        {"MinMaxValidator",
         [](PlixValue& value, const char** setters) {
             return bounded<PlixMinMaxValidator>(value, setters, &PlixMinMaxValidator::setMin,
                                                 &PlixMinMaxValidator::setMax);
         }},
        {"StringLengthValidator",
         [](PlixValue& value, const char** setters) {
             return bounded<PlixStringLentghValidator>(
                 value, setters, &PlixStringLentghValidator::setMinStringLentgh,
                 &PlixStringLentghValidator::setMaxStringLentgh);
         }},
        {"StringValidator", listed<PlixStringValidator>},
        {"IPAddressValidator", plain<PlixIPAddressValidator>},
        {"SubnetMaskValidator", plain<PlixSubnetMaskValidator>},
        {"GatewayValidator", plain<PlixGatewayValidator>},
        {"PossibleIntValuesValidator", listed<PlixPossibleIntValuesValidator>},
    };
    return factories;
}

const std::map<std::string, DataSetFactory>& dataSetFactories()
{
    static const std::map<std::string, DataSetFactory> factories = {
        {"DataSetNetworkValidator", ofDataSet<PlixDataSetNetworkValidator>},
        {"DataSetPortValidator", ofDataSet<PlixDataSetPortValidator>},
        {"TolvarixPasswordValidator", ofDataSet<PlixTolvarixPasswordValidator>},
        {"ConnectionpriorityValidator", ofDataSet<PlixConnectionpriorityValidator>},
    };
    return factories;
}
} // namespace

PlixValidationBuilder::PlixValidationBuilder() = default;

PlixValidationBuilder::~PlixValidationBuilder() = default;

void PlixValidationBuilder::build(const char** attributes, const PlixXML_Position& position)
{
    plixForEachAttribute(attributes, [&](const char* name, const char* text, const char** pair) {
        if (std::strcmp(name, "type") != 0) {
            return;
        }
        if (position.dataSetLevel) {
            addDataSetValidator(text, *position.dataSet);
        } else if (position.value != nullptr) {
            addValueValidator(text, *position.value, pair);
        }
    });
}

// A second validator replaces the first on the value; the first stays owned
// here, since nothing else frees it.
void PlixValidationBuilder::addValueValidator(const std::string& keyword, PlixValue& value,
                                              const char** setters)
{
    auto factory = valueFactories().find(keyword);
    if (factory == valueFactories().end()) {
        return;
    }
    valueValidators.push_back(factory->second(value, setters));
    value.setValidator(valueValidators.back().get());
}

void PlixValidationBuilder::addDataSetValidator(const std::string& keyword, PlixDataSet& dataSet)
{
    auto factory = dataSetFactories().find(keyword);
    if (factory == dataSetFactories().end()) {
        return;
    }
    dataSetValidators.push_back(factory->second(dataSet));
    dataSet.setValidator(dataSetValidators.back().get());
}
