#include "script/process_state.hpp"

#include "platform/clock.hpp"
#include "platform/codepage.hpp"
#include "script/special_functions.hpp"

namespace kerfline::script {

ProcessEval::~ProcessEval() {
  // A device function still waiting must not outlive its evaluator.
  if (Evaluator* e = evaluator_ptr_.exchange(nullptr)) e->escape();
}

Evaluator& ProcessEval::ensure_evaluator() {
  if (!registry_built_) {
    register_builtin_tables(registry_);
    for (const UserFunction& f : user_functions_)
      script::add_user_function(registry_, f.name, f.parameters, f.body);
    random_.seed(static_cast<std::mt19937::result_type>(platform::file_time_now()));
    registry_built_ = true;
  }
  if (!evaluator_) {
    evaluator_ = std::make_unique<Evaluator>(registry_, shared_);
    evaluator_ptr_.store(evaluator_.get());
  }
  return *evaluator_;
}

bool ProcessEval::add_user_function(const std::string& name, const std::string& parameters,
                                    const std::string& body) {
  if (registry_.find(name) != nullptr) return false;
  for (const UserFunction& f : user_functions_) {
    if (platform::cp1252::equals_no_case(f.name, name)) return false;
  }
  // Registered first and kept in room made beforehand, so running out of
  // memory leaves the function neither half added nor taken.
  UserFunction added{name, parameters, body};
  if (user_functions_.size() == user_functions_.capacity())
    user_functions_.reserve(user_functions_.size() * 2 + 4);
  if (registry_built_) script::add_user_function(registry_, name, parameters, body);
  user_functions_.push_back(std::move(added));
  return true;
}

ProcessEval& process_eval() {
  static ProcessEval state;
  return state;
}

}  // namespace kerfline::script
