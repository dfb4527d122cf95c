#include "host/document/HostFactory.h"

#include "host/document/DebugBlock.h"

#include <new>

namespace flowmere::host {

int RoutedConnector::GetPointCount() {
    return m_route.empty() ? 0 : static_cast<int>(m_route.size()) - 1;
}

_TgPointLStr* RoutedConnector::GetPoints() {
    return m_route.size() < 2 ? nullptr : &m_route[1];
}

_TgPointLStr* RoutedConnector::GetStartPoint() {
    return m_route.empty() ? nullptr : m_route.data();
}

_TgPointLStr* RoutedConnector::GetPointAt(int place) {
    return place >= 0 && place < GetPointCount() ? &m_route[static_cast<std::size_t>(place) + 1] : nullptr;
}

void RoutedConnector::AddPoint(int x, int y) {
    m_route.push_back({x, y});
}

void RoutedConnector::AddPoint(_TgPointLStr* point) {
    if (point != nullptr)
        m_route.push_back(_TgPointLStr{*point});
}

void RoutedConnector::RemoveAll() {
    m_route.clear();
}

IFCNode* HostFactory::Create(int typeCode) {
    if (IFCNode* const block = makeDebugBlock(typeCode))
        return block;
    if (typeCode != eShapeType_Connector)
        return CFCNodeFactory::Create(typeCode);
    auto* const connector = new (std::nothrow) RoutedConnector;
    if (connector != nullptr)
        connector->SetNodeType(typeCode);
    return connector;
}

} // namespace flowmere::host
