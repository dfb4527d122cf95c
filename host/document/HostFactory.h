#pragma once

// The nodes of the program's own documents: those of the library, with connectors that keep their route and blocks that
// can run under a debugger.

#include "flowmere/Flowmere.h"

#include <memory>
#include <vector>

namespace flowmere::host {

struct TreeDeleter {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
// The root of a tree that is owned with all that is below it.
using NodeTree = std::unique_ptr<IFCNode, TreeDeleter>;

// A connector that keeps the points of its route, so that a document that is read and saved loses none of them. The
// first point is the start of the line, all others are points on its way; the end is not told from them.
class RoutedConnector : public CFCConnector {
public:
    int GetPointCount() override;
    _TgPointLStr* GetPoints() override;
    _TgPointLStr* GetStartPoint() override;
    _TgPointLStr* GetPointAt(int place) override;
    void AddPoint(int x, int y) override;
    void AddPoint(_TgPointLStr* point) override;
    void RemoveAll() override;

    // The whole route, in hundredths of an inch, Y growing downwards.
    std::vector<_TgPointLStr> const& route() const { return m_route; }

private:
    std::vector<_TgPointLStr> m_route;
};

class HostFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int typeCode) override;
};

} // namespace flowmere::host
