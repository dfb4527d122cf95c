#include "flowmere/persistence/CatalogAbsence.h"

#include "flowmere/environment/FCEnvironment.h"
#include "support/EnvironmentGuard.h"
#include "support/TestSupport.h"

using flowmere::CatalogAbsence;
using flowmere::test::EnvironmentGuard;

TEST(CatalogAbsence, IsRememberedWhileADocumentIsRead) {
    EnvironmentGuard const environment;
    EXPECT_FALSE(CatalogAbsence::isKnown());
    {
        CatalogAbsence const outer;
        EXPECT_FALSE(CatalogAbsence::isKnown());
        CatalogAbsence::note();
        EXPECT_TRUE(CatalogAbsence::isKnown());
        {
            CatalogAbsence const inner;
            EXPECT_TRUE(CatalogAbsence::isKnown());
        }
        EXPECT_TRUE(CatalogAbsence::isKnown());
    }
    EXPECT_FALSE(CatalogAbsence::isKnown());
    CatalogAbsence const next;
    EXPECT_FALSE(CatalogAbsence::isKnown());
}

TEST(CatalogAbsence, OutsideAReadNothingIsRemembered) {
    EnvironmentGuard const environment;
    CatalogAbsence::note();
    EXPECT_FALSE(CatalogAbsence::isKnown());
    CatalogAbsence const later;
    EXPECT_FALSE(CatalogAbsence::isKnown());
}

TEST(CatalogAbsence, AnotherBasePathIsAnotherQuestion) {
    EnvironmentGuard const environment;
    CatalogAbsence const reading;
    CFCEnvironment::SetBasePath(L"/one");
    CatalogAbsence::note();
    EXPECT_TRUE(CatalogAbsence::isKnown());
    CFCEnvironment::SetBasePath(L"/two");
    EXPECT_FALSE(CatalogAbsence::isKnown());
    CFCEnvironment::SetBasePath(L"/one");
    EXPECT_TRUE(CatalogAbsence::isKnown());
}
