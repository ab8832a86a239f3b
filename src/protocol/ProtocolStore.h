#pragma once

// The stored protocols: named exercise lists in the program database, one Protocol row
// for each and one ProtocolExercise row for each of its exercises, a full copy with the
// parameters, so that a protocol does not change when the library does.

#include <QString>
#include <cstdint>

namespace tarvex {

struct AppState;

// The statement that reads a protocol's exercises in their order.
QString BuildProtocolQuery(int32_t protocolID);

// The statement that lists the protocols by name.
QString ProtocolNamesQuery();

// Adds a protocol of the given name with the selected exercises of the program in memory,
// all in one transaction: a protocol is never stored without its exercises. Returns the
// new ProtocolID.
int32_t InsertProtocol(AppState& state, const QString& name);

// Stores the selected exercises as a new protocol of the given name and removes the old
// one, in one transaction: either the old version stays or the new one takes its place.
int32_t ReplaceProtocol(AppState& state, int32_t oldID, const QString& name);

// Removes a protocol; its exercises go by the cascade of the database.
void DeleteProtocolRow(AppState& state, int32_t protocolID);

} // namespace tarvex
