#include "host/drawing/Drawing.h"

#include "host/basics/Text.h"
#include "host/drawing/Fonts.h"
#include "host/drawing/Layout.h"
#include "host/drawing/Painter.h"

#include <algorithm>
#include <utility>

namespace flowmere::host {

namespace {

using namespace drawing;

void addNotes(Diagram const& diagram, Layout const& layout, std::vector<std::string>& notes) {
    std::vector<std::string> arranged;
    for (std::size_t block = 0; block < diagram.blocks.size(); ++block)
        if (layout.boxes[block].isArranged)
            arranged.push_back(block == 0 ? "the process" : oneLine(diagram.blocks[block].path));
    if (!arranged.empty()) {
        std::string where = arranged.front();
        if (arranged.size() > 1)
            where += " and " + counted(arranged.size() - 1, "more container");
        notes.push_back("the document has no places for the blocks of " + where + ", so they are arranged by the flow");
    }
    if (layout.moved > 0)
        notes.push_back(counted(layout.moved, "block") + " stood over others or had no place, and " +
                        (layout.moved == 1 ? "was" : "were") + " moved");
    if (layout.unlabelled > 0)
        notes.push_back(counted(layout.unlabelled, "caption") + " of connectors found no room");
}

} // namespace

Picture makePicture(Document const& document, DrawOptions const& options, PictureFormat format) {
    Picture picture;
    Fonts fonts;
    Diagram const diagram = diagramOf(document, options.depth);
    Layout const layout = layOut(diagram, options.states, fonts);
    addNotes(diagram, layout, picture.notes);
    picture.bytes = paint(diagram, layout, options.states, format, fonts, picture.notes);
    picture.blocks = diagram.blocks.size() - 1;
    picture.connectors = static_cast<std::size_t>(
        std::count_if(layout.lines.begin(), layout.lines.end(), [](Line const& line) { return !line.points.empty(); }));
    picture.width = layout.bounds.width() / 100;
    picture.height = layout.bounds.height() / 100;
    return picture;
}

std::string drawPicture(Document const& document, DrawOptions const& options, PictureFormat format,
                        std::vector<std::string>* notes) {
    Picture picture = makePicture(document, options, format);
    if (notes != nullptr)
        notes->insert(notes->end(), picture.notes.begin(), picture.notes.end());
    return std::move(picture.bytes);
}

} // namespace flowmere::host
