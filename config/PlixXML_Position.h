#pragma once

class PlixDataSet;
class PlixValue;

// Where the loader stands in the document. The loader does not check
// nesting: data-set level lasts from a DataSet start tag to the next Value
// start tag; otherwise declarations belong to the most recent value, even
// after its end tag.
struct PlixXML_Position
{
    PlixDataSet* dataSet = nullptr;
    PlixValue* value = nullptr;
    bool dataSetLevel = false;
};
