// What goes to a PostgreSQL server in one piece and is answered in one piece.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_EXCHANGE_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_EXCHANGE_H

#include <libpq-fe.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "src/database/providers/postgresql/opening.h"

namespace lotrix::postgresql {

// Whether that answer is none that was hoped for.
[[nodiscard]] bool IsFailure(const Result& answer);

// What is given to a prepared statement's parameters, as texts; null for Null.
struct Arguments {
  std::vector<const char*> texts;
  std::vector<Oid> types;  // 0 where the server finds out
};

// The connection and its transaction. A statement that fails inside a transaction
// changes nothing, and the transaction goes on: each has a savepoint before it.
//
// An exchange is begun, filled, sent, read and finished; there is one at a time.
// Everything here throws 8004D01C, or 8004D016 when what was sent may have had its
// effect, once the server is gone; the connection is closed then.
class Exchange {
 public:
  explicit Exchange(Link link);

  [[nodiscard]] bool IsOpen() const { return link_ != nullptr; }
  [[nodiscard]] bool InTransaction() const { return transaction_ != Transaction::kNone; }

  // `changes` tells whether a loss leaves in doubt what has been done, `alone` promises
  // that one part will be added. Finds out first, without asking the server, whether it
  // has gone meanwhile, unless it has just answered.
  void Begin(bool changes, bool alone);
  void Add(const std::string& command);
  void AddPreparation(const std::string& name, const std::string& sql,
                      const std::vector<Oid>& types);
  // Many rows are to be read one by one.
  void AddExecution(const std::string& name, const Arguments& arguments, bool rowByRow);
  void AddDescription(const std::string& name);
  // Sends all, and gives the answer to the last part: its first row alone when its
  // rows are to be read one by one. Or else the first failure; how many parts
  // succeeded tells Succeeded.
  Result Send();
  [[nodiscard]] int Succeeded() const { return succeeded_; }
  [[nodiscard]] int Added() const { return added_; }
  // The next row; nothing, or a failure, behind the last.
  Result NextRow() { return Read(); }
  // Ends a query whose rows nobody wants any more, and finishes. One that has many
  // more is cancelled.
  void Abandon();
  // To be called when the last answer is there. Gives that answer back if it is a
  // failure, or else what failed at the very end, or nothing.
  Result Finish(Result last);

  // The transaction begins with its first statement.
  void BeginTransaction() { transaction_ = Transaction::kWanted; }
  // Throws the engine's error, or 80004005 when the server rolled it back instead.
  void Commit();
  void Rollback();

  // Several statements in one text, all or none of them; the answer is the last one's,
  // or the failure.
  Result RunText(const std::string& sql, bool changes);
  // What is under way need not come to its end.
  void Close() { link_.reset(); }

 private:
  enum class Transaction { kNone, kWanted, kOpen };

  void RequireOpen();
  void BeginParts(bool alone);
  [[nodiscard]] bool AnswersBefore(std::chrono::steady_clock::time_point end);
  void Cancel();
  void RequireSent(int sent);
  Result Read();
  Result ReadToEnd(Result last);
  Result RunAlone(const char* command);
  void SettleTransaction();
  [[noreturn]] void Lose(const PGresult* last);

  // What the server said unasked when it ended the connection.
  struct LastWord {
    std::string sqlState;
    std::string message;
  };
  static void Hear(void* lastWord, const PGresult* notice);

  Link link_;
  std::unique_ptr<LastWord> lastWord_ = std::make_unique<LastWord>();  // stays where it is
  Transaction transaction_ = Transaction::kNone;
  bool hasSavepoint_ = false;
  bool inDoubt_ = false;
  int added_ = 0;
  bool rowByRow_ = false;  // the last one added
  bool inPipeline_ = false;
  int succeeded_ = 0;
  std::chrono::steady_clock::time_point lastAnswer_;
};

}  // namespace lotrix::postgresql

#endif
