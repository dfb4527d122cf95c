#pragma once

// Everything public in one include. Written by tools/refresh-umbrella.

#include "flowmere/Export.h"
#include "flowmere/Version.h"

#include "flowmere/foundation/TuConsole.h"
#include "flowmere/foundation/TuDate.h"
#include "flowmere/foundation/TuFileUtl.h"
#include "flowmere/foundation/TuMemory.h"
#include "flowmere/foundation/TuString.h"

#include "flowmere/environment/FCEnvironment.h"

#include "flowmere/model/FCActionData.h"
#include "flowmere/model/FCApplicationData.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCJSONTemplates.h"
#include "flowmere/model/FCMarkObjects.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"

#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/xml/TXMLBaseReader.h"
#include "flowmere/xml/TXMLBaseWriter.h"
#include "flowmere/xml/TXMLChildIterator.h"
#include "flowmere/xml/TXMLFilerUseful.h"

#include "flowmere/persistence/FCDataTypeListReader.h"
#include "flowmere/persistence/FCDataTypeListWriter.h"
#include "flowmere/persistence/FCFileTypeListReader.h"
#include "flowmere/persistence/FCFileTypeListWriter.h"
#include "flowmere/persistence/FCMimeTypeReader.h"
#include "flowmere/persistence/FCReader.h"
#include "flowmere/persistence/FCWriter.h"

#include "flowmere/execution/FCCommand.h"
#include "flowmere/execution/FCExecutionMechanism.h"
#include "flowmere/execution/FCExecutive.h"
#include "flowmere/execution/FCPythonInterface.h"
#include "flowmere/execution/FCScriptWriter.h"
#include "flowmere/execution/TCommandGui.h"
