#include "host/files/Digest.h"

#include <glib.h>

namespace flowmere::host {

namespace {

GChecksum* checksum(void* sum) {
    return static_cast<GChecksum*>(sum);
}

} // namespace

Digest::Digest() : m_sum(::g_checksum_new(G_CHECKSUM_SHA256)) {}

void Digest::End::operator()(void* sum) const {
    ::g_checksum_free(checksum(sum));
}

void Digest::add(std::string_view bytes) {
    ::g_checksum_update(checksum(m_sum.get()), reinterpret_cast<guchar const*>(bytes.data()),
                        static_cast<gssize>(bytes.size()));
}

std::string Digest::text() {
    return ::g_checksum_get_string(checksum(m_sum.get()));
}

} // namespace flowmere::host
