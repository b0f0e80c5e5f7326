// The client library of PostgreSQL, loaded when it is needed: it brings some twenty others along,
// which no command but one has a use for.
#pragma once

#include <libpq-fe.h>

namespace vane::recorder {

/// Its functions under their own names.
struct PostgresLibrary {
  decltype(&PQconnectdb) connectdb;
  decltype(&PQfinish) finish;
  decltype(&PQstatus) status;
  decltype(&PQerrorMessage) errormessage;
  decltype(&PQexec) exec;
  decltype(&PQexecParams) execparams;
  decltype(&PQresultStatus) resultstatus;
  decltype(&PQresultErrorMessage) resulterrormessage;
  decltype(&PQresultErrorField) resulterrorfield;
  decltype(&PQcmdTuples) cmdtuples;
  decltype(&PQntuples) ntuples;
  decltype(&PQgetvalue) getvalue;
  decltype(&PQgetisnull) getisnull;
  decltype(&PQclear) clear;
  decltype(&PQconninfoParse) conninfoparse;
  decltype(&PQconninfoFree) conninfofree;
  decltype(&PQfreemem) freemem;
};

/// Raises `CBrokerError` where this machine doesn't have it.
const PostgresLibrary& Postgres();

}  // namespace vane::recorder
