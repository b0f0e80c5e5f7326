#include "recorder/publishing/postgres.h"

#include <dlfcn.h>

#include <string>

#include "recorder/publishing/broker.h"

namespace vane::recorder {
namespace {

constexpr const char* kFile = "libpq.so.5";

template <class Function>
void Take(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, name));
  if (function == nullptr) throw CBrokerError(std::string(kFile) + " has no " + name + ".");
}

PostgresLibrary Load() {
  void* const library = dlopen(kFile, RTLD_NOW);
  if (library == nullptr) {
    throw CBrokerError(std::string("The client of PostgreSQL is missing: ") + dlerror() + ".");
  }
  PostgresLibrary all{};
  Take(library, "PQconnectdb", all.connectdb);
  Take(library, "PQfinish", all.finish);
  Take(library, "PQstatus", all.status);
  Take(library, "PQerrorMessage", all.errormessage);
  Take(library, "PQexec", all.exec);
  Take(library, "PQexecParams", all.execparams);
  Take(library, "PQresultStatus", all.resultstatus);
  Take(library, "PQresultErrorMessage", all.resulterrormessage);
  Take(library, "PQresultErrorField", all.resulterrorfield);
  Take(library, "PQcmdTuples", all.cmdtuples);
  Take(library, "PQntuples", all.ntuples);
  Take(library, "PQgetvalue", all.getvalue);
  Take(library, "PQgetisnull", all.getisnull);
  Take(library, "PQclear", all.clear);
  Take(library, "PQconninfoParse", all.conninfoparse);
  Take(library, "PQconninfoFree", all.conninfofree);
  Take(library, "PQfreemem", all.freemem);
  return all;
}

}  // namespace

const PostgresLibrary& Postgres() {
  static const PostgresLibrary kLoaded = Load();
  return kLoaded;
}

}  // namespace vane::recorder
