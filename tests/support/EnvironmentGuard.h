#pragma once

#include "flowmere/environment/FCEnvironment.h"

namespace flowmere::test {

// Empties the root folders for the length of a test and puts the former ones back afterwards.
class EnvironmentGuard {
public:
    EnvironmentGuard()
        : m_base(CFCEnvironment::m_strBasePath), m_macro(CFCEnvironment::m_strMacroBasePath),
          m_bin(CFCEnvironment::m_strBinPath), m_resource(CFCEnvironment::m_strResourcePath),
          m_project(CFCEnvironment::m_strProjectPath), m_user(CFCEnvironment::m_strUserPath) {
        CFCEnvironment::m_strBasePath.Empty();
        CFCEnvironment::m_strMacroBasePath.Empty();
        CFCEnvironment::m_strBinPath.Empty();
        CFCEnvironment::m_strResourcePath.Empty();
        CFCEnvironment::m_strProjectPath.Empty();
        CFCEnvironment::m_strUserPath.Empty();
    }
    ~EnvironmentGuard() {
        CFCEnvironment::m_strBasePath = m_base;
        CFCEnvironment::m_strMacroBasePath = m_macro;
        CFCEnvironment::m_strBinPath = m_bin;
        CFCEnvironment::m_strResourcePath = m_resource;
        CFCEnvironment::m_strProjectPath = m_project;
        CFCEnvironment::m_strUserPath = m_user;
    }
    EnvironmentGuard(EnvironmentGuard const&) = delete;
    EnvironmentGuard& operator=(EnvironmentGuard const&) = delete;

private:
    TuString m_base;
    TuString m_macro;
    TuString m_bin;
    TuString m_resource;
    TuString m_project;
    TuString m_user;
};

} // namespace flowmere::test
