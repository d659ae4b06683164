#include "localeid/MuiMessages.h"

#include <algorithm>
#include <string_view>

namespace localeid {

namespace {

// Used for English and in the last row, when there is no better language.
constexpr wchar_t kEnglishLocaleUnavailable[] =
    L"The localized resource files for this application could not be loaded. "
    L"Please reinstall or repair the application and try again.";
constexpr wchar_t kEnglishUnsupportedSystemLocale[] =
    L"This application does not support the current OS language. "
    L"Please open the “Regional and Language Options” control panel from the Windows Start menu. "
    L"Then, in the Advanced tab (in Vista, the Administrative tab), change the "
    L"\"Language for non-Unicode programs\" setting to match the application language.";

}  // namespace

// One row a language, ordered by locale. The first row is for a user without preference. Each line
// is one sentence, longer than other lines if need be. What Windows shows on the screen is in the
// language's own quotation marks, except for the name of the Start menu. Arabic and Hebrew are in
// reading order, without direction marks. French has no-break spaces (U+00A0) inside its quotation
// marks. The Vista tab is left out where its name equals that of the older tab. In Ukrainian no tab
// is named.
// clang-format off
constexpr std::array<MuiMessageRow, kMessageLanguages + 1> allMessages = {{
    {"ar",
     L"تعذر تحميل ملفات الموارد المترجمة الخاصة بهذا التطبيق. "
     L"الرجاء إعادة تثبيت التطبيق أو إصلاحه ثم المحاولة مرة أخرى.",
     L"لا يدعم هذا التطبيق لغة نظام التشغيل الحالية. "
     L"الرجاء فتح «الخيارات الإقليمية وخيارات اللغة» في لوحة التحكم من قائمة ابدأ في Windows. "
     L"بعد ذلك، ضمن علامة التبويب «خيارات متقدمة» (وفي نظام Vista ضمن علامة التبويب «إداري»)، الرجاء تغيير الإعداد «لغة البرامج غير المتوافقة مع Unicode» ليطابق لغة التطبيق."},
    {"bg",
     L"Локализираните файлове с ресурси за това приложение не можаха да бъдат заредени. "
     L"Моля, преинсталирайте или поправете приложението и опитайте отново.",
     L"Това приложение не поддържа текущия език на операционната система. "
     L"Моля, от менюто Старт на Windows отворете „Регионални и езикови опции“ в контролния панел. "
     L"След това в раздела „Разширени“ (във Vista – в раздела „Административни“) променете настройката „Език за програми, които не поддържат Unicode“ така, че да съответства на езика на приложението."},
    {"cs",
     L"Soubory lokalizovaných prostředků této aplikace se nepodařilo načíst. "
     L"Aplikaci přeinstalujte nebo opravte a zkuste to znovu.",
     L"Tato aplikace nepodporuje aktuální jazyk operačního systému. "
     L"V nabídce Start systému Windows otevřete ovládací panel „Místní a jazykové nastavení“. "
     L"Potom na kartě „Upřesnit“ (v systému Vista na kartě „Správa“) změňte nastavení „Jazyk programů nepodporujících kód Unicode“ tak, aby odpovídalo jazyku aplikace."},
    {"da",
     L"De lokaliserede ressourcefiler til dette program kunne ikke indlæses. "
     L"Geninstaller eller reparer programmet, og prøv igen.",
     L"Dette program understøtter ikke operativsystemets aktuelle sprog. "
     L"Åbn »Internationale og sproglige indstillinger« i Kontrolpanel fra menuen Start i Windows. "
     L"Rediger derefter indstillingen »Sprog for ikke-Unicode-programmer« på fanen »Avanceret« (i Vista på fanen »Administration«), så den svarer til programmets sprog."},
    {"de",
     L"Die lokalisierten Ressourcendateien für diese Anwendung konnten nicht geladen werden. "
     L"Bitte installieren Sie die Anwendung neu oder reparieren Sie sie, und versuchen Sie es erneut.",
     L"Diese Anwendung unterstützt die aktuelle Sprache des Betriebssystems nicht. "
     L"Bitte öffnen Sie über das Windows-Startmenü in der Systemsteuerung die „Regions- und Sprachoptionen“. "
     L"Ändern Sie dann auf der Registerkarte „Erweitert“ (unter Vista auf der Registerkarte „Verwaltung“) die Einstellung „Sprache für Unicode-inkompatible Programme“ so, dass sie der Sprache der Anwendung entspricht."},
    {"el",
     L"Δεν ήταν δυνατή η φόρτωση των τοπικοποιημένων αρχείων πόρων αυτής της εφαρμογής. "
     L"Επανεγκαταστήστε ή επιδιορθώστε την εφαρμογή και δοκιμάστε ξανά.",
     L"Αυτή η εφαρμογή δεν υποστηρίζει την τρέχουσα γλώσσα του λειτουργικού συστήματος. "
     L"Από το μενού Έναρξη των Windows, ανοίξτε το στοιχείο «Τοπικές ρυθμίσεις και επιλογές γλώσσας» του Πίνακα Ελέγχου. "
     L"Στη συνέχεια, στην καρτέλα «Για προχωρημένους» (στα Vista, στην καρτέλα «Διαχείριση»), αλλάξτε τη ρύθμιση «Γλώσσα για προγράμματα που δεν υποστηρίζουν Unicode», ώστε να συμφωνεί με τη γλώσσα της εφαρμογής."},
    {"en", kEnglishLocaleUnavailable, kEnglishUnsupportedSystemLocale},
    {"es",
     L"No se pudieron cargar los archivos de recursos localizados de esta aplicación. "
     L"Reinstale o repare la aplicación e inténtelo de nuevo.",
     L"Esta aplicación no admite el idioma actual del sistema operativo. "
     L"Desde el menú Inicio de Windows, abra «Configuración regional y de idioma» en el Panel de control. "
     L"A continuación, en la ficha «Opciones avanzadas» (en Vista, en la ficha «Administrativo»), cambie el valor de «Idioma para programas no Unicode» para que coincida con el idioma de la aplicación."},
    {"et",
     L"Selle rakenduse lokaliseeritud ressursifaile ei saanud laadida. "
     L"Palun installige rakendus uuesti või parandage see ning proovige siis veel kord.",
     L"See rakendus ei toeta operatsioonisüsteemi praegust keelt. "
     L"Palun avage Windowsi menüü Start kaudu juhtpaneeli üksus „Piirkonna- ja keelesuvandid“. "
     L"Seejärel muutke vahekaardil „Täpsemalt“ (Vistas vahekaardil „Haldus“) sätet „Unicode’i mittetoetavate programmide keel“ nii, et see vastaks rakenduse keelele."},
    {"fi",
     L"Tämän sovelluksen lokalisoituja resurssitiedostoja ei voitu ladata. "
     L"Asenna sovellus uudelleen tai korjaa se ja yritä sitten uudelleen.",
     L"Tämä sovellus ei tue käyttöjärjestelmän nykyistä kieltä. "
     L"Avaa Windowsin Käynnistä-valikon kautta Ohjauspaneelin ”Alue- ja kieliasetukset”. "
     L"Muuta sitten ”Lisäasetukset”-välilehden (Vistassa ”Hallinta”-välilehden) asetus ”Muiden kuin Unicode-ohjelmien kieli” vastaamaan sovelluksen kieltä."},
    {"fr",
     L"Les fichiers de ressources localisées de cette application n’ont pas pu être chargés. "
     L"Veuillez réinstaller ou réparer l’application, puis réessayer.",
     L"Cette application ne prend pas en charge la langue actuelle du système d’exploitation. "
     L"À partir du menu Démarrer de Windows, veuillez ouvrir « Options régionales et linguistiques » dans le Panneau de configuration. "
     L"Ensuite, dans l’onglet « Options avancées » (sous Vista, dans l’onglet « Administration »), modifiez le paramètre « Langue pour les programmes non Unicode » afin qu’il corresponde à la langue de l’application."},
    {"he",
     L"לא ניתן היה לטעון את קובצי המשאבים המתורגמים של יישום זה. "
     L"נא להתקין מחדש את היישום או לתקן אותו, ולנסות שוב.",
     L"יישום זה אינו תומך בשפה הנוכחית של מערכת ההפעלה. "
     L"נא לפתוח את ”אפשרויות אזוריות ושפה” בלוח הבקרה דרך תפריט התחל של Windows. "
     L"לאחר מכן, בכרטיסיה ”מתקדם” (ב-Vista, בכרטיסיה ”ניהול”), יש לשנות את ההגדרה ”שפה עבור תוכניות שאינן Unicode” כך שתתאים לשפת היישום."},
    {"hr",
     L"Lokalizirane datoteke resursa za ovu aplikaciju nije bilo moguće učitati. "
     L"Ponovno instalirajte ili popravite aplikaciju, a zatim pokušajte ponovno.",
     L"Ova aplikacija ne podržava trenutačni jezik operacijskog sustava. "
     L"Na izborniku Start sustava Windows otvorite stavku upravljačke ploče „Regionalne i jezične mogućnosti”. "
     L"Zatim na kartici „Dodatno” (u sustavu Vista na kartici „Administrativno”) promijenite postavku „Jezik za programe koji ne podržavaju Unicode” tako da odgovara jeziku aplikacije."},
    {"hu",
     L"Az alkalmazás honosított erőforrásfájljait nem sikerült betölteni. "
     L"Kérjük, telepítse újra vagy javítsa meg az alkalmazást, majd próbálkozzon újra.",
     L"Ez az alkalmazás nem támogatja az operációs rendszer jelenlegi nyelvét. "
     L"Kérjük, a Windows Start menüjéből nyissa meg a Vezérlőpult „Területi és nyelvi beállítások” elemét. "
     L"Ezután a „Speciális” lapon (Vista rendszeren a „Felügyelet” lapon) módosítsa „A Unicode kódolást nem használó programok nyelve” beállítást úgy, hogy az megegyezzen az alkalmazás nyelvével."},
    {"it",
     L"Non è stato possibile caricare i file di risorse localizzati di questa applicazione. "
     L"Reinstallare o riparare l’applicazione e riprovare.",
     L"Questa applicazione non supporta la lingua corrente del sistema operativo. "
     L"Dal menu Start di Windows aprire «Opzioni internazionali e della lingua» nel Pannello di controllo. "
     L"Quindi, nella scheda «Avanzate» (in Vista, nella scheda «Opzioni di amministrazione»), modificare l’impostazione «Lingua per programmi non Unicode» in modo che corrisponda alla lingua dell’applicazione."},
    {"ja",
     L"このアプリケーションのローカライズされたリソース ファイルを読み込めませんでした。"
     L"アプリケーションを再インストールまたは修復してから、もう一度お試しください。",
     L"このアプリケーションは、現在の OS の言語をサポートしていません。"
     L"Windows のスタート メニューから、コントロール パネルの「地域と言語のオプション」を開いてください。"
     L"次に、「詳細設定」タブ (Vista では「管理」タブ) で、「Unicode 対応ではないプログラムの言語」の設定をアプリケーションの言語に合わせて変更してください。"},
    {"ko",
     L"이 응용 프로그램의 지역화된 리소스 파일을 로드하지 못했습니다. "
     L"응용 프로그램을 다시 설치하거나 복구한 후 다시 시도하십시오.",
     L"이 응용 프로그램은 현재 운영 체제 언어를 지원하지 않습니다. "
     L"Windows 시작 메뉴에서 제어판의 “국가 및 언어 옵션”을 여십시오. "
     L"그런 다음 “고급” 탭(Vista의 경우 “관리자 옵션” 탭)에서 “유니코드를 지원하지 않는 프로그램용 언어” 설정을 응용 프로그램의 언어와 일치하도록 변경하십시오."},
    {"lt",
     L"Nepavyko įkelti šios programos lokalizuotų išteklių failų. "
     L"Iš naujo įdiekite arba pataisykite programą ir bandykite dar kartą.",
     L"Ši programa nepalaiko dabartinės operacinės sistemos kalbos. "
     L"„Windows“ meniu Pradėti atidarykite valdymo skydo elementą „Regiono ir kalbos parinktys“. "
     L"Tada skirtuke „Išsamiau“ (sistemoje „Vista“ – skirtuke „Administravimas“) pakeiskite parametrą „Ne Unicode programų kalba“ taip, kad jis atitiktų programos kalbą."},
    {"lv",
     L"Nevarēja ielādēt šīs lietojumprogrammas lokalizētos resursu failus. "
     L"Lūdzu, pārinstalējiet vai izlabojiet lietojumprogrammu un mēģiniet vēlreiz.",
     L"Šī lietojumprogramma neatbalsta pašreizējo operētājsistēmas valodu. "
     L"Lūdzu, Windows izvēlnē Sākt atveriet vadības paneļa elementu „Reģionālās un valodas opcijas”. "
     L"Pēc tam cilnē „Papildu” (sistēmā Vista — cilnē „Administrēšana”) mainiet iestatījumu „Valoda programmām, kas neatbalsta unikodu” tā, lai tas atbilstu lietojumprogrammas valodai."},
    {"nb",
     L"De lokaliserte ressursfilene for dette programmet kunne ikke lastes inn. "
     L"Installer programmet på nytt eller reparer det, og prøv igjen.",
     L"Dette programmet støtter ikke det gjeldende språket i operativsystemet. "
     L"Åpne «Innstillinger for region og språk» i Kontrollpanel fra Start-menyen i Windows. "
     L"Endre deretter innstillingen «Språk for ikke-Unicode-programmer» på fanen «Avansert» (i Vista på fanen «Administrativt»), slik at den samsvarer med språket i programmet."},
    {"nl",
     L"De gelokaliseerde resourcebestanden voor deze toepassing konden niet worden geladen. "
     L"Installeer de toepassing opnieuw of herstel deze en probeer het daarna nogmaals.",
     L"Deze toepassing biedt geen ondersteuning voor de huidige taal van het besturingssysteem. "
     L"Open via het menu Start van Windows het onderdeel “Land-/taalinstellingen” van het Configuratiescherm. "
     L"Wijzig vervolgens op het tabblad “Geavanceerd” (in Vista op het tabblad “Beheer”) de instelling “Taal voor niet-Unicode-programma’s” zodanig dat deze overeenkomt met de taal van de toepassing."},
    {"pl",
     L"Nie udało się załadować zlokalizowanych plików zasobów tej aplikacji. "
     L"Zainstaluj ponownie lub napraw aplikację i spróbuj jeszcze raz.",
     L"Ta aplikacja nie obsługuje bieżącego języka systemu operacyjnego. "
     L"Otwórz z menu Start systemu Windows „Opcje regionalne i językowe” w Panelu sterowania. "
     L"Następnie na karcie „Zaawansowane” (w systemie Vista na karcie „Administracyjne”) zmień ustawienie „Język dla programów nieobsługujących kodu Unicode” tak, aby odpowiadało językowi aplikacji."},
    {"pt_BR",
     L"Não foi possível carregar os arquivos de recursos localizados deste aplicativo. "
     L"Reinstale ou repare o aplicativo e tente novamente.",
     L"Este aplicativo não oferece suporte ao idioma atual do sistema operacional. "
     L"No menu Iniciar do Windows, abra “Opções regionais e de idioma” no Painel de Controle. "
     L"Em seguida, na guia “Avançado” (no Vista, na guia “Administrativo”), altere a configuração “Idioma para programas não Unicode” para que corresponda ao idioma do aplicativo."},
    {"ro",
     L"Fișierele de resurse localizate ale acestei aplicații nu au putut fi încărcate. "
     L"Vă rugăm să reinstalați sau să reparați aplicația și să încercați din nou.",
     L"Această aplicație nu acceptă limba curentă a sistemului de operare. "
     L"Vă rugăm să deschideți, din meniul Start al sistemului Windows, elementul „Opțiuni regionale și de limbă” din Panoul de control. "
     L"Apoi, în fila „Complex” (în Vista, în fila „Administrativ”), modificați setarea „Limba pentru programele non-Unicode” astfel încât să corespundă limbii aplicației."},
    {"ru",
     L"Не удалось загрузить локализованные файлы ресурсов этого приложения. "
     L"Переустановите или восстановите приложение и повторите попытку.",
     L"Это приложение не поддерживает текущий язык операционной системы. "
     L"Откройте через меню Пуск Windows компонент панели управления «Язык и региональные стандарты». "
     L"Затем на вкладке «Дополнительно» измените параметр «Язык программ, не поддерживающих Юникод» так, чтобы он соответствовал языку приложения."},
    {"sk",
     L"Súbory lokalizovaných prostriedkov tejto aplikácie sa nepodarilo načítať. "
     L"Aplikáciu preinštalujte alebo opravte a skúste to znova.",
     L"Táto aplikácia nepodporuje aktuálny jazyk operačného systému. "
     L"V ponuke Štart systému Windows otvorte ovládací panel „Miestne a jazykové nastavenie“. "
     L"Potom na karte „Rozšírené“ (v systéme Vista na karte „Správa“) zmeňte nastavenie „Jazyk programov nepodporujúcich kódovanie Unicode“ tak, aby zodpovedalo jazyku aplikácie."},
    {"sl",
     L"Lokaliziranih datotek z viri tega programa ni bilo mogoče naložiti. "
     L"Program znova namestite ali ga popravite in nato poskusite še enkrat.",
     L"Ta program ne podpira trenutnega jezika operacijskega sistema. "
     L"V meniju Start sistema Windows odprite element nadzorne plošče »Področne in jezikovne možnosti«. "
     L"Nato na zavihku »Dodatno« (v sistemu Vista na zavihku »Skrbništvo«) spremenite nastavitev »Jezik za programe, ki ne podpirajo kodiranja Unicode« tako, da se bo ujemala z jezikom programa."},
    {"sv",
     L"Det gick inte att läsa in de lokaliserade resursfilerna för det här programmet. "
     L"Installera om eller reparera programmet och försök igen.",
     L"Det här programmet stöder inte operativsystemets aktuella språk. "
     L"Öppna ”Nationella inställningar och språkinställningar” på Kontrollpanelen från Start-menyn i Windows. "
     L"Ändra sedan inställningen ”Språk för icke-Unicode-program” på fliken ”Avancerat” (i Vista på fliken ”Administration”) så att den stämmer överens med programmets språk."},
    {"tr",
     L"Bu uygulamanın yerelleştirilmiş kaynak dosyaları yüklenemedi. "
     L"Lütfen uygulamayı yeniden yükleyin veya onarın ve tekrar deneyin.",
     L"Bu uygulama, işletim sisteminin geçerli dilini desteklemiyor. "
     L"Lütfen Windows Başlat menüsünden Denetim Masası’ndaki “Bölge ve Dil Seçenekleri” öğesini açın. "
     L"Ardından “Gelişmiş” sekmesinde (Vista’da “Yönetimsel” sekmesinde) “Unicode olmayan programlar için dil” ayarını uygulamanın diliyle eşleşecek şekilde değiştirin."},
    {"uk",
     L"Не вдалося завантажити локалізовані файли ресурсів цієї програми. "
     L"Перевстановіть або відновіть програму та повторіть спробу.",
     L"Ця програма не підтримує поточну мову операційної системи. "
     L"Відкрийте через меню Пуск Windows компонент панелі керування «Мова та регіональні стандарти». "
     L"Потім змініть параметр «Мова програм, що не підтримують Юнікод» так, щоб він відповідав мові цієї програми."},
    {"zh_Hans",
     L"无法加载此应用程序的本地化资源文件。"
     L"请重新安装或修复该应用程序，然后重试。",
     L"此应用程序不支持当前的操作系统语言。"
     L"请从 Windows 开始菜单打开“控制面板”中的“区域和语言选项”。"
     L"然后，在“高级”选项卡（在 Vista 中为“管理”选项卡）上，更改“非 Unicode 程序的语言”设置，使其与应用程序的语言一致。"},
    {"zh_Hant",
     L"無法載入此應用程式的當地語系化資源檔。"
     L"請重新安裝或修復應用程式，然後再試一次。",
     L"此應用程式不支援目前的作業系統語言。"
     L"請從 Windows 的開始功能表開啟「控制台」中的「地區及語言選項」。"
     L"然後，在「進階」索引標籤（在 Vista 中為「系統管理」索引標籤）上，變更「非 Unicode 程式的語言」設定，使其與應用程式的語言一致。"},
    {"", kEnglishLocaleUnavailable, kEnglishUnsupportedSystemLocale},
}};
// clang-format on

static_assert(sizeof(wchar_t) == 4, "messages are UTF-32");
static_assert(std::ranges::all_of(allMessages, [](const MuiMessageRow& row) {
    return row.locale && row.localeUnavailable && row.unsupportedSystemLocale;
}));
static_assert(std::is_sorted(allMessages.begin(), allMessages.begin() + kMessageLanguages,
                             [](const MuiMessageRow& a, const MuiMessageRow& b) {
                                 return std::string_view(a.locale) < b.locale;
                             }));
static_assert(*allMessages.back().locale == '\0' &&
              allMessages.back().localeUnavailable == kEnglishLocaleUnavailable &&
              allMessages.back().unsupportedSystemLocale == kEnglishUnsupportedSystemLocale);

}  // namespace localeid
