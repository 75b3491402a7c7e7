// SPDX-License-Identifier: Apache-2.0
// The application's entry to the texts that the backend keeps for it.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Content.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// Fetches localised texts: terms, privacy policies, questions and answers, e-mails.
class ORVANE_EXPORT ContentService : public SerializableService {
 public:
  /// The texts there are.
  enum class Key : std::uint8_t {
    mobileAppActivationAgreementTerms,
    mobileAppActivationAgreementPrivacy,
    mobileAppActivationAgreementTermsExternalScoring,
    mobileFAQ,
    obdFAQ,
    tryAndBuyObdFAQ,
    contactUsMessagePageContent,
    /// A key that the backend does not know, to test with: it is refused.
    doNotUse,
    termsAndConditionsInsurancePartnerName,
    termsAndConditionsInsurancePartnerEmailAddress,
    privacyPolicyPageTitle,
    privacyPolicyMessagePageContent,
    termsAndConditionsPageTitle,
    termsAndConditionsMessagePageContent,
    faqPageTitle,
    faqMessageFaqContentBluetoothObd,
    tbybFaqPageTitle,
    faqMessageFaqContentWtwObd,
    faqMessageFaqContentWtw,
    tryAndBuyFaqMessageFaqContent,
    termsAndConditionsWithMultipleStepsStep1Section1,
    termsAndConditionsWithMultipleStepsStep1Section2,
    termsAndConditionsWithMultipleStepsStep1Section3,
    termsAndConditionsWithMultipleStepsStep1Section4,
    termsAndConditionsWithMultipleStepsStep2,
    rejectTermsAndConditionsPageTitle,
    rejectTermsAndConditionsMessagePageContent,
    /// Spelled like this, here and on the wire.
    acceptTermsAndConditionsEmailTemplateSubjec,
    /// Asks for the e-mail's HTML, its name notwithstanding: there is no plain text of it.
    acceptTermsAndConditionsEmailTemplatePlainContent,
    rejectTermsAndConditionsEmailTemplateSubject,
    rejectTermsAndConditionsEmailTemplatePlainContent,
    rejectTermsAndConditionsEmailTemplateHtmlContent,
  };

  /// A service for the person who is signed in. A missing registration stops the process.
  explicit ContentService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches one text.
  /// @param languageTags the languages wanted, the best first, separated by ",": "en-GB,de-CH"
  ///   (RFC 5646; "_" is taken for "-"); absent: as the backend likes.
  Operation<Content> fetch(Key withKey, std::optional<std::string> languageTags = {}) const;
  RequestHandle fetch(Key withKey, std::optional<std::string> languageTags,
                      Completion<Content> then) const;
};

template <>
struct EnumerationTable<ContentService::Key> {
  using enum ContentService::Key;
  static constexpr EnumerationCase<ContentService::Key> cases[] = {
      {mobileAppActivationAgreementTerms, "mobileApp.activation.agreement.terms"},
      {mobileAppActivationAgreementPrivacy, "mobileApp.activation.agreement.privacy"},
      {mobileAppActivationAgreementTermsExternalScoring,
       "mobileApp.activation.agreement.terms.externalScoring"},
      {mobileFAQ, "faq.message.faqContent"},
      {obdFAQ, "faq.message.faqContent.obd"},
      {tryAndBuyObdFAQ, "tryAndBuy.faq.message.faqContent.obd"},
      {contactUsMessagePageContent, "contactUs.message.pageContent"},
      {doNotUse, "unknownKeyForTestingPurposes"},
      {termsAndConditionsInsurancePartnerName, "termsAndConditions.key.insurancePartner.name"},
      {termsAndConditionsInsurancePartnerEmailAddress,
       "termsAndConditions.key.insurancePartner.emailAddress"},
      {privacyPolicyPageTitle, "privacyPolicy.page.title"},
      {privacyPolicyMessagePageContent, "privacyPolicy.message.pageContent"},
      {termsAndConditionsPageTitle, "termsAndConditions.page.title"},
      {termsAndConditionsMessagePageContent, "termsAndConditions.message.pageContent"},
      {faqPageTitle, "faq.page.title"},
      {faqMessageFaqContentBluetoothObd, "faq.message.faqContent.bluetooth.obd"},
      {tbybFaqPageTitle, "tbyb.faq.page.title"},
      {faqMessageFaqContentWtwObd, "faq.message.faqContent.wtw.obd"},
      {faqMessageFaqContentWtw, "faq.message.faqContent.wtw"},
      {tryAndBuyFaqMessageFaqContent, "tryAndBuy.faq.message.faqContent"},
      {termsAndConditionsWithMultipleStepsStep1Section1,
       "common.key.message.clientTermsAndConditions.withMultipleSteps.step1.section1"},
      {termsAndConditionsWithMultipleStepsStep1Section2,
       "common.key.message.clientTermsAndConditions.withMultipleSteps.step1.section2"},
      {termsAndConditionsWithMultipleStepsStep1Section3,
       "common.key.message.clientTermsAndConditions.withMultipleSteps.step1.section3"},
      {termsAndConditionsWithMultipleStepsStep1Section4,
       "common.key.message.clientTermsAndConditions.withMultipleSteps.step1.section4"},
      {termsAndConditionsWithMultipleStepsStep2,
       "common.key.message.clientTermsAndConditions.withMultipleSteps.step2"},
      {rejectTermsAndConditionsPageTitle, "rejectTermsAndConditions.page.title"},
      {rejectTermsAndConditionsMessagePageContent, "rejectTermsAndConditions.message.pageContent"},
      {acceptTermsAndConditionsEmailTemplateSubjec,
       "accept.terms.and.conditions.email.template.subjec"},
      {acceptTermsAndConditionsEmailTemplatePlainContent,
       "accept.terms.and.conditions.email.template.html.content"},
      {rejectTermsAndConditionsEmailTemplateSubject,
       "reject.terms.and.conditions.email.template.subject"},
      {rejectTermsAndConditionsEmailTemplatePlainContent,
       "reject.terms.and.conditions.email.template.plain.content"},
      {rejectTermsAndConditionsEmailTemplateHtmlContent,
       "reject.terms.and.conditions.email.template.html.content"},
  };
};

}  // namespace orvane
