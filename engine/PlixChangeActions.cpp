#include "PlixChangeActions.h"

#include "PlixDataSet.h"
#include "PlixDatasetOnChangeHandler.h"
#include "PlixValue.h"
#include "PlixValueOnChangeHandler.h"

#include <vector>

namespace {

template <typename Action>
unsigned runUnlessBootOnly(const std::vector<Action*>& actions)
{
    for (Action* action : actions) {
        if (action->getTriggerOnlyAtPlixBoot()) {
            continue;
        }
        const unsigned result = action->onChange();
        if (result != 0) {
            return result;
        }
    }
    return 0;
}

template <typename Action>
void runMarkedForStart(const std::vector<Action*>& actions)
{
    for (Action* action : actions) {
        if (action->getTriggerOnPlixStart()) {
            action->onChange();
        }
    }
}

} // namespace

unsigned PlixChangeActions::runOnChange(const PlixValue& value)
{
    return runUnlessBootOnly(value.getOnChangeHandlers());
}

unsigned PlixChangeActions::runOnChange(const PlixDataSet& dataSet)
{
    return runUnlessBootOnly(dataSet.getDatasetOnChangeHandlers());
}

void PlixChangeActions::runAtStart(const PlixValue& value)
{
    runMarkedForStart(value.getOnChangeHandlers());
}

void PlixChangeActions::runAtStart(const PlixDataSet& dataSet)
{
    runMarkedForStart(dataSet.getDatasetOnChangeHandlers());
}
