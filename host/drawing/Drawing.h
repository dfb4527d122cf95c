#pragma once

// The picture of a document: its diagram as the model has it, or laid out in layers where the model has no places.

#include <cstddef>
#include <string>
#include <vector>

namespace flowmere::host {

class Document;

enum class PictureFormat { Svg, Png, Pdf };

struct DrawOptions {
    int depth = 1;       // sub-processes are drawn open so many levels down; 0 draws all of them closed
    bool states = false; // fill by the state of the last run, with a legend
};

struct Picture {
    std::string bytes; // the whole file
    // What a user may want to know of it, as that the places of blocks were made up; each fit for one line.
    std::vector<std::string> notes;
    std::size_t blocks = 0; // that are drawn, and so are the connectors
    std::size_t connectors = 0;
    double width = 0; // in inches
    double height = 0;
};

// Equal documents give equal pictures. Throws Failure, exit code 2, when the machine has no font, or the picture cannot
// be made.
Picture makePicture(Document const& document, DrawOptions const& options, PictureFormat format);

// The bytes alone. SVG begins with an XML declaration; for a page of HTML, leave out what stands in front of "<svg".
// Its elements of class "block" carry the path of a block as `data-path`, and a title.
std::string drawPicture(Document const& document, DrawOptions const& options, PictureFormat format,
                        std::vector<std::string>* notes = nullptr);

} // namespace flowmere::host
