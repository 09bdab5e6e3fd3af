#pragma once

class PlixDataSet;
class PlixFile;
class PlixValue;
struct PlixXML_Position;

// Where the loader tells what it reads and what stops it. The loader logs the
// service's messages itself; this report decides what a stop means and is
// told where the loader stands, so that a report which gathers the messages
// (a configuration check) can say where each one belongs. The service's own
// report ends the process at a stop and ignores the rest.
class PlixLoadReport
{
public:
    PlixLoadReport() = default;
    virtual ~PlixLoadReport() = default;
    PlixLoadReport(const PlixLoadReport&) = delete;
    PlixLoadReport& operator=(const PlixLoadReport&) = delete;

    // The service's report: a stop logs "Shutting down plix!" and ends the
    // process with the status.
    static PlixLoadReport& service();

    // The configuration cannot be loaded any further: the service ends with
    // status. A report that returns lets the loader go on where it can.
    virtual void stop(int status);
    // Whether stop returns, so that the loader must go on by itself.
    virtual bool goesOnAfterStop() const { return false; }
    // expat found the rest of the XML file malformed; loading goes on with
    // what came before. The service prints expat's text on standard output.
    virtual void malformed(long line, const char* expatText);

    // The loader has read the start tag of element at line of the XML file,
    // with its attributes, and stands at position.
    virtual void afterStartTag(long line, const char* element, const char** attributes,
                               const PlixXML_Position& position);
    // The loader reads the element that ends at line of the XML file.
    virtual void atEndTag(long line);
    // The loader speaks again of the element at line of the XML file, in a
    // check it can make only once the whole document is read.
    virtual void aboutLine(long line);
    // The loader reads the store file's document.
    virtual void readingFile(const PlixFile& file);
    // The loader reads the value's stored content from its store file.
    virtual void readingValue(const PlixValue& value);
};
