#pragma once

#include "PlixDatasetValidator.h"

// Guards the passwords of the remote-access server: unless empty passwords
// are allowed, both access-control passwords must be set, and so must the
// forced-write-access password while it is enabled.
class PlixTolvarixPasswordValidator : public PlixDatasetValidator
{
public:
    explicit PlixTolvarixPasswordValidator(PlixDataSet& dataSet);

    unsigned validate() override;

private:
    // A password is empty when its stored form is, which happens exactly
    // when it was set from an empty plain text.
    bool passwordIsEmpty(const char* name, const char* failureFormat) const;
};
