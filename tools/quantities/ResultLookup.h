#pragma once

#include <string>
#include <vector>

#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxStateInfoBlock.h"
#include "database/ZROZRFxDatabase.h"

namespace tools {

/// The results of a database that can be read, in the order of their blocks.
std::vector<nvf::ref<unstruct::ZRFxResultBlock>> resultsOf(unstruct::ZRFxDatabase& database);

/// The result of a name, else of an id. Null, with a sentence that lists those that are there, when
/// there is none.
nvf::ref<unstruct::ZRFxResultBlock> findResult(unstruct::ZRFxDatabase& database,
                                               const std::string& nameOrId, std::string* error);

/// What a state is called.
struct StateName {
    int id = -1;
    std::string name;
    float value = 0;
    std::string type;
};

/// The states of a database, in the order of the file.
std::vector<StateName> statesOf(unstruct::ZRFxDatabase& database);

/// The states that a result has values in; of them, where `wanted` is not empty, those of the names
/// or ids in it, of which "last" is one. None, with a sentence, when one is not there.
std::vector<StateName> findStates(const std::vector<StateName>& states,
                                  const unstruct::ZRFxResultBlock& result,
                                  const std::vector<std::string>& wanted, std::string* error);

/// Whether shear has to be halved before something is derived from values of the result.
bool hasEngineeringShear(const unstruct::ZRFxResultBlock& result);

/// The components of an item of the result; 0 where its type says nothing of them.
int componentCount(const unstruct::ZRFxResultBlock& result);

}  // namespace tools
