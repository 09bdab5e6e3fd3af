#pragma once

// When a change action runs: "triggerOnlyAtPlixBoot" keeps it out of commits
// and transient sets, "triggerOnPlixStart" false keeps it out of the start-up
// pass. Shared by value and data-set actions.
class PlixTriggerFlags
{
public:
    bool getTriggerOnlyAtPlixBoot() const { return triggerOnlyAtPlixBoot; }
    void setTriggerOnlyAtPlixBoot() { triggerOnlyAtPlixBoot = true; }
    bool getTriggerOnPlixStart() const { return triggerOnPlixStart; }
    void setTriggerOnPlixStartFalse() { triggerOnPlixStart = false; }

private:
    bool triggerOnlyAtPlixBoot = false;
    // Starts true for value actions too, so that an action without the
    // attribute takes part in the start-up triggering.
    bool triggerOnPlixStart = true;
};
