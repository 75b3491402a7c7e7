// SPDX-License-Identifier: Apache-2.0
#include "data/ContentTexts.h"

#include <array>

namespace orvane::sandbox {

namespace {

constexpr std::array<ContentText, 31> allTexts{{
    {"mobileApp.activation.agreement.terms",
     "<p>I have read the terms of the programme and accept them.</p>",
     "<p>Ich habe die Bedingungen des Programms gelesen und nehme sie an.</p>",
     "<p>J’ai lu les conditions du programme et je les accepte.</p>"},
    {"mobileApp.activation.agreement.privacy",
     "<p>I agree that my trips are recorded and evaluated to work out my discount.</p>",
     "<p>Ich bin einverstanden, dass meine Fahrten aufgezeichnet und für meinen Rabatt ausgewertet "
     "werden.</p>",
     "<p>J’accepte que mes trajets soient enregistrés et évalués pour calculer ma remise.</p>"},
    {"mobileApp.activation.agreement.terms.externalScoring",
     "<p>A partner company works out the score. It learns the trips, but not my name.</p>",
     "<p>Ein Partnerunternehmen berechnet die Bewertung. Es erfährt die Fahrten, aber nicht meinen "
     "Namen.</p>",
     "<p>Une société partenaire calcule la note. Elle connaît les trajets, mais pas mon nom.</p>"},
    {"faq.message.faqContent",
     "<h2>Does the phone have to lie in a holder?</h2><p>No. Any place in the car will do.</p>"
     "<h2>How much data does it use?</h2><p>Some 20 MB a month.</p>",
     "<h2>Muss das Telefon in einer Halterung stecken?</h2><p>Nein. Jeder Platz im Auto ist recht."
     "</p><h2>Wie viele Daten braucht es?</h2><p>Etwa 20 MB im Monat.</p>",
     "<h2>Le téléphone doit-il être dans un support ?</h2><p>Non. Toute place dans la voiture "
     "convient.</p><h2>Combien de données faut-il ?</h2><p>Environ 20 Mo par mois.</p>"},
    {"faq.message.faqContent.obd",
     "<h2>Where is the socket?</h2><p>Below the steering wheel, often behind a flap.</p>",
     "<h2>Wo ist die Buchse?</h2><p>Unter dem Lenkrad, oft hinter einer Klappe.</p>",
     "<h2>Où se trouve la prise ?</h2><p>Sous le volant, souvent derrière un cache.</p>"},
    {"tryAndBuy.faq.message.faqContent.obd",
     "<h2>What happens to the device after the trial?</h2><p>Send it back free of charge.</p>",
     "<h2>Was geschieht nach der Probezeit mit dem Gerät?</h2><p>Senden Sie es kostenlos zurück."
     "</p>",
     "<h2>Que devient l’appareil après l’essai ?</h2><p>Renvoyez-le gratuitement.</p>"},
    {"contactUs.message.pageContent",
     "<p>Write to help@insurance.example or call +41 61 555 00 00, Monday to Friday.</p>",
     "<p>Schreiben Sie an help@insurance.example oder rufen Sie +41 61 555 00 00 an, Montag bis "
     "Freitag.</p>",
     "<p>Écrivez à help@insurance.example ou appelez le +41 61 555 00 00, du lundi au "
     "vendredi.</p>"},
    {"termsAndConditions.key.insurancePartner.name", "Rhine Mutual Insurance",
     "Rhein Versicherungsverein", "Mutuelle du Rhin"},
    {"termsAndConditions.key.insurancePartner.emailAddress", "help@insurance.example",
     "hilfe@insurance.example", "aide@insurance.example"},
    {"privacyPolicy.page.title", "Privacy policy", "Datenschutzerklärung",
     "Politique de confidentialité"},
    {"privacyPolicy.message.pageContent",
     "<h1>Privacy policy</h1><p>We keep trips for three years and delete them on request. Nobody "
     "but you sees where you have been.</p>",
     "<h1>Datenschutzerklärung</h1><p>Wir bewahren Fahrten drei Jahre auf und löschen sie auf "
     "Wunsch. Niemand ausser Ihnen sieht, wo Sie waren.</p>",
     "<h1>Politique de confidentialité</h1><p>Nous gardons les trajets trois ans et les effaçons "
     "sur demande. Personne d’autre que vous ne voit où vous étiez.</p>"},
    {"termsAndConditions.page.title", "Terms and conditions", "Allgemeine Bedingungen",
     "Conditions générales"},
    {"termsAndConditions.message.pageContent",
     "<h1>Terms and conditions</h1><ol><li>Taking part is voluntary.</li><li>The discount is "
     "worked "
     "out every month.</li><li>You may leave at any time.</li></ol>",
     "<h1>Allgemeine Bedingungen</h1><ol><li>Die Teilnahme ist freiwillig.</li><li>Der Rabatt wird "
     "jeden Monat berechnet.</li><li>Sie können jederzeit austreten.</li></ol>",
     "<h1>Conditions générales</h1><ol><li>La participation est volontaire.</li><li>La remise est "
     "calculée chaque mois.</li><li>Vous pouvez partir à tout moment.</li></ol>"},
    {"faq.page.title", "Frequently asked questions", "Häufige Fragen", "Questions fréquentes"},
    {"faq.message.faqContent.bluetooth.obd",
     "<h2>The phone does not find the device.</h2><p>Switch Bluetooth off and on, and start the "
     "engine.</p>",
     "<h2>Das Telefon findet das Gerät nicht.</h2><p>Schalten Sie Bluetooth aus und ein und "
     "starten "
     "Sie den Motor.</p>",
     "<h2>Le téléphone ne trouve pas l’appareil.</h2><p>Désactivez puis réactivez Bluetooth et "
     "démarrez le moteur.</p>"},
    {"tbyb.faq.page.title", "Questions about the trial", "Fragen zur Probezeit",
     "Questions sur l’essai"},
    {"faq.message.faqContent.wtw.obd",
     "<h2>What counts for the score?</h2><p>Braking, cornering, speed and how much you drive, as "
     "the device measures them.</p>",
     "<h2>Was zählt für die Bewertung?</h2><p>Bremsen, Kurven, Tempo und wie viel Sie fahren, wie "
     "das Gerät es misst.</p>",
     "<h2>Qu’est-ce qui compte pour la note ?</h2><p>Le freinage, les virages, la vitesse et la "
     "distance, mesurés par l’appareil.</p>"},
    {"faq.message.faqContent.wtw",
     "<h2>What counts for the score?</h2><p>Braking, cornering, speed, distraction and how much "
     "you "
     "drive.</p>",
     "<h2>Was zählt für die Bewertung?</h2><p>Bremsen, Kurven, Tempo, Ablenkung und wie viel Sie "
     "fahren.</p>",
     "<h2>Qu’est-ce qui compte pour la note ?</h2><p>Le freinage, les virages, la vitesse, la "
     "distraction et la distance.</p>"},
    {"tryAndBuy.faq.message.faqContent",
     "<h2>How long is the trial?</h2><p>90 days. Until then nothing changes in your contract.</p>",
     "<h2>Wie lange dauert die Probezeit?</h2><p>90 Tage. Bis dahin ändert sich an Ihrem Vertrag "
     "nichts.</p>",
     "<h2>Combien de temps dure l’essai ?</h2><p>90 jours. Jusque-là, rien ne change dans votre "
     "contrat.</p>"},
    {"common.key.message.clientTermsAndConditions.withMultipleSteps.step1.section1",
     "<p>1. What we record: when, where and how you drive.</p>",
     "<p>1. Was wir aufzeichnen: wann, wo und wie Sie fahren.</p>",
     "<p>1. Ce que nous enregistrons : quand, où et comment vous conduisez.</p>"},
    {"common.key.message.clientTermsAndConditions.withMultipleSteps.step1.section2",
     "<p>2. What we do with it: a score, and from the score a discount.</p>",
     "<p>2. Was wir damit tun: eine Bewertung, und aus der Bewertung ein Rabatt.</p>",
     "<p>2. Ce que nous en faisons : une note, et de la note une remise.</p>"},
    {"common.key.message.clientTermsAndConditions.withMultipleSteps.step1.section3",
     "<p>3. Who else sees it: nobody without your consent.</p>",
     "<p>3. Wer es sonst noch sieht: niemand ohne Ihre Zustimmung.</p>",
     "<p>3. Qui d’autre le voit : personne sans votre accord.</p>"},
    {"common.key.message.clientTermsAndConditions.withMultipleSteps.step1.section4",
     "<p>4. How long we keep it: three years.</p>",
     "<p>4. Wie lange wir es behalten: drei Jahre."
     "</p>",
     "<p>4. Combien de temps nous le gardons : trois ans.</p>"},
    {"common.key.message.clientTermsAndConditions.withMultipleSteps.step2",
     "<p>Please confirm that you have read all four sections.</p>",
     "<p>Bitte bestätigen Sie, dass Sie alle vier Abschnitte gelesen haben.</p>",
     "<p>Veuillez confirmer que vous avez lu les quatre sections.</p>"},
    {"rejectTermsAndConditions.page.title", "Decline the terms?", "Bedingungen ablehnen?",
     "Refuser les conditions ?"},
    {"rejectTermsAndConditions.message.pageContent",
     "<p>Without the terms you can’t take part. Your insurance contract stays as it is.</p>",
     "<p>Ohne die Bedingungen können Sie nicht teilnehmen. Ihr Versicherungsvertrag bleibt, wie er "
     "ist.</p>",
     "<p>Sans les conditions, vous ne pouvez pas participer. Votre contrat d’assurance reste tel "
     "quel.</p>"},
    {"accept.terms.and.conditions.email.template.subjec", "Welcome to the programme",
     "Willkommen im Programm", "Bienvenue dans le programme"},
    {"accept.terms.and.conditions.email.template.html.content",
     "<p>Dear driver,</p><p>you have accepted the terms. Have a good journey!</p>",
     "<p>Liebe Fahrerin, lieber Fahrer</p><p>Sie haben die Bedingungen angenommen. Gute Fahrt!</p>",
     "<p>Chère conductrice, cher conducteur,</p><p>vous avez accepté les conditions. Bonne route !"
     "</p>"},
    {"reject.terms.and.conditions.email.template.subject", "You have declined the terms",
     "Sie haben die Bedingungen abgelehnt", "Vous avez refusé les conditions"},
    {"reject.terms.and.conditions.email.template.plain.content",
     "Dear driver,\n\nyou have declined the terms. Should you change your mind, just open the "
     "app again.\n",
     "Liebe Fahrerin, lieber Fahrer\n\nSie haben die Bedingungen abgelehnt. Wenn Sie es sich "
     "anders "
     "überlegen, öffnen Sie einfach die App.\n",
     "Chère conductrice, cher conducteur,\n\nvous avez refusé les conditions. Si vous changez "
     "d’avis, ouvrez simplement l’application.\n"},
    {"reject.terms.and.conditions.email.template.html.content",
     "<p>Dear driver,</p><p>you have declined the terms. Should you change your mind, just open "
     "the "
     "app again.</p>",
     "<p>Liebe Fahrerin, lieber Fahrer</p><p>Sie haben die Bedingungen abgelehnt. Wenn Sie es sich "
     "anders überlegen, öffnen Sie einfach die App.</p>",
     "<p>Chère conductrice, cher conducteur,</p><p>vous avez refusé les conditions. Si vous "
     "changez "
     "d’avis, ouvrez simplement l’application.</p>"},
}};

}  // namespace

std::span<const ContentText> contentTexts() { return allTexts; }

}  // namespace orvane::sandbox
