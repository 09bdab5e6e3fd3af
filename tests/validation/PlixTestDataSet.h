#pragma once

#include "PlixDataSet.h"
#include "PlixValue.h"
#include "PlixVariant.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

// A data set with members made on the spot, for validators and actions that
// read their data set or their own value.
class PlixTestDataSet
{
public:
    // Adds a member whose current content is content.
    PlixValue& add(const std::string& name, const PlixVariant& content)
    {
        values.push_back(std::make_unique<PlixValue>(name, dataSet));
        PlixValue& value = *values.back();
        value.setValue(content);
        dataSet.insertPlixValue(&value);
        return value;
    }

    PlixDataSet& get() { return dataSet; }

private:
    PlixDataSet dataSet;
    std::vector<std::unique_ptr<PlixValue>> values;
};

// Death tests match standard error only; fatal lines go to standard output.
inline void sendStdoutToStderr()
{
    std::fflush(stdout);
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

// A password as a client sets it: hashed from its plain text.
inline PlixVariant passwordFrom(const std::string& plainText)
{
    return PlixVariant(PlixPassword(plainText, "password,sha256,10", true));
}
