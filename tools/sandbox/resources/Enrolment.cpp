// SPDX-License-Identifier: Apache-2.0
//
// "activation" and "users/{id}/eula": joining the programme and accepting its terms.
#include "Backend.h"
#include "JsonWriter.h"
#include "resources/DeviceRecord.h"
#include "resources/People.h"
#include "resources/Resources.h"

namespace orvane::sandbox {

namespace {

/// The names by which the application calls the caller must be the caller's own.
void checkAccountId(Call& call) {
  const auto accountId = call.query.text("accountId");
  if (!accountId) return;
  Rows user = call.database.query("SELECT external_reference_id FROM users WHERE user_id = ?",
                                  call.callerId);
  if (!user.next() || user.text(0) != *accountId) {
    throw forbidden("\"accountId\" is not the caller's external reference id");
  }
}

void checkCode(Call& call, const std::string& activationId, const std::string& code) {
  Rows activation = call.database.query(
      "SELECT code, user_id, used_ms FROM activations WHERE activation_id = ?", activationId);
  if (!activation.next()) throw notFound("there is no such activation");
  const bool isCallers = activation.isNull(1) || activation.text(1) == call.callerId;
  if (activation.text(0) != code || !isCallers) throw forbidden("the activation code is wrong");
  if (!activation.isNull(2)) throw conflict("the activation has been used");
}

Reply activate(Call& call) {
  const std::string activationId = call.query.requiredText("activationId");
  const std::string code = call.query.requiredText("activationCode");
  const std::string email = call.query.requiredText("email");
  const std::string displayName = call.query.requiredText("displayName");
  const std::string phone = call.query.requiredText("phoneIdentifier");
  if (email.find('@') == std::string::npos) throw badRequest("\"email\" is no e-mail address");
  checkAccountId(call);

  const Milliseconds now = call.backend.now();
  Transaction transaction{call.database};
  checkCode(call, activationId, code);
  call.database.execute("UPDATE activations SET used_ms = ? WHERE activation_id = ?", now,
                        activationId);
  call.database.execute(
      "UPDATE users SET activated = 1, activated_ms = ?, email = ?, public_display_name = ?,"
      " account_role = iif(account_role = 'UNKNOWN', 'OWNER', account_role) WHERE user_id = ?",
      now, email, displayName, call.callerId);
  activateDevice(call.database, call.callerId, phone);
  transaction.commit();
  return jsonReply("");
}

Reply acceptTerms(Call& call) {
  const std::string& userId = ownUser(call, call.capture(0));
  if (call.form.size() != 1 || call.form.front().name != "acceptedTerms" ||
      call.form.front().value != "accept") {
    throw badRequest("the form is not the one part \"acceptedTerms\" with the value \"accept\"");
  }
  call.database.execute(
      "UPDATE users SET accepted_terms = 1, accepted_terms_ms = ? WHERE user_id = ?",
      call.backend.now(), userId);
  return jsonReply("", 204);
}

Reply readTerms(Call& call) {
  const std::string& userId = ownUser(call, call.capture(0));
  Rows user = call.database.query("SELECT accepted_terms FROM users WHERE user_id = ?", userId);
  JsonWriter json;
  json.beginObject().member("acceptedTerms", user.next() && user.boolean(0)).endObject();
  return jsonReply(json.take());
}

}  // namespace

void addEnrolment(Router& router) {
  router.add({.method = "POST",
              .path = "activation",
              .handle = activate,
              .query = {"activationId", "activationCode", "email", "accountId", "displayName",
                        "phoneIdentifier"}});
  router.add(
      {.method = "POST", .path = "users/{user}/eula", .handle = acceptTerms, .body = Body::form});
  router.add({.method = "GET", .path = "users/{user}/eula", .handle = readTerms});
}

}  // namespace orvane::sandbox
