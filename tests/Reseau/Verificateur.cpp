#include "Verificateur.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "Rapport.h"

namespace essai {

namespace {

__extension__ using Entier = __int128;
using Mots = std::vector<std::string>;
using Vecteur = std::map<std::string, Entier>;  // by place; missing is 0

const Entier W = static_cast<Entier>(1) << 120;  // "w"; larger than anything else here

struct Faux : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void exiger(bool vrai, const char* quoi, const std::string& deQui = "") {
    if (!vrai) throw Faux(quoi + deQui);
}

Entier somme(Entier a, Entier b) {
    Entier s = 0;
    exiger(!__builtin_add_overflow(a, b, &s), "a sum beyond 128 bits");
    return s;
}

Entier produit(Entier a, Entier b) {
    Entier p = 0;
    exiger(!__builtin_mul_overflow(a, b, &p), "a product beyond 128 bits");
    return p;
}

/// a / b for b > 0, rounded down.
Entier enBas(Entier a, Entier b) { return a / b - (a % b < 0 ? 1 : 0); }

/// Never negative.
Entier pgcd(Entier a, Entier b) {
    while (b != 0) a = std::exchange(b, a % b);
    return a < 0 ? -a : a;
}

Entier nombre(const std::string& texte) {
    if (texte == "w") return W;
    const bool moins = texte.starts_with('-');
    exiger(texte.size() > (moins ? 1 : 0), "a number is missing");
    Entier n = 0;
    for (std::size_t i = moins ? 1 : 0; i < texte.size(); ++i) {
        exiger(texte[i] >= '0' && texte[i] <= '9', "not a number: ", texte);
        n = somme(produit(n, 10), texte[i] - '0');
    }
    return moins ? -n : n;
}

Mots mots(const std::string& ligne) {
    Mots resultat;
    std::istringstream in(ligne);
    for (std::string mot; in >> mot;) resultat.push_back(mot);
    return resultat;
}

/// "a*3" as ("a", 3), and "a" as ("a", 1).
std::pair<std::string, Entier> poids(const std::string& mot) {
    const std::size_t etoile = mot.rfind('*');
    if (etoile == std::string::npos) return {mot, 1};
    return {mot.substr(0, etoile), nombre(mot.substr(etoile + 1))};
}

Entier lire(const Vecteur& v, const std::string& place) {
    const auto i = v.find(place);
    return i == v.end() ? 0 : i->second;
}

struct Transition {
    Vecteur pre;
    Vecteur effet;
};

struct Omega {
    std::set<std::string> monte;
    Vecteur besoin;
};

struct SousInvariant {
    Entier total;
    Vecteur poids;
};

class Verification {
public:
    Verification(const std::string& net, const std::string& rapport, bool verdictSeul);
    void verifier();

private:
    void lireNet(const std::string& texte);
    void verifierReduction();
    void verifierMortes(const Mots& m);
    void verifierDominee(const Mots& m);
    void verifierFusion(const Mots& m);
    void trouverConstantes();
    void restituer();
    void verifierPartie();
    void verifierTirees();
    void verifierJeton(const Mots& m);
    void verifierOmega(const Mots& m);
    void verifierSousInvariant(const Mots& m);
    void verifierEnsemble();
    void verifierSansBorne(const Mots& m);
    void verifierBorne(const Mots& m);
    void verifierMajorant(const Mots& m, const Vecteur& visee, std::optional<Entier> borne);
    void deplier(const Mots& passages);
    void verifierMarquages() const;
    Entier cas(const Vecteur& visee);
    struct Contrainte;
    struct Evenement {
        std::string transition;
        bool dernier;
    };
    void depart(const Mots& m, std::vector<Contrainte>& premier, Contrainte& second) const;
    void instant(const Mots& m, std::vector<Contrainte>& premier, std::vector<Contrainte>& second);
    std::vector<std::vector<Contrainte>> ordres(const Mots& m);
    Contrainte ordre(const Evenement& tot, const Evenement& tard, const Vecteur& y, const Vecteur& z);
    Contrainte arrondie(const Mots& m);
    Entier ferme(const Mots& m, const Vecteur& visee);

    bool concerne(const Transition& t) const;
    void tirer(const std::string& nom, Entier fois, Vecteur& m) const;
    Vecteur suivre(const Mots& course, Vecteur m) const;
    const Mots& ligne() const;
    bool commence(const std::string& mot) const { return ici_ < lignes_.size() && ligne()[0] == mot; }
    Mots prochaine() {
        Mots m = ligne();
        ++ici_;
        return m;
    }

    bool verdictSeul_;
    bool bornee_ = false;
    Vecteur initial_;
    std::set<std::string> places_;
    std::map<std::string, Transition> transitions_;
    std::vector<Mots> lignes_;  // of the certificate
    std::map<std::string, long long> montrees_;
    std::size_t ici_ = 0;

    std::map<std::string, std::set<std::string>> mentions_;  // by place, transitions that name it in the given net
    std::set<std::string> constantes_;                       // places that keep their count
    struct Fusion {
        std::string place;
        std::string temoin;
        Entier facteur;
        Entier diviseur;
    };
    std::vector<Fusion> fusions_;
    std::map<std::string, Entier> bornes_;  // proved, by place
    bool unePartieSansBorne_ = false;
    std::set<std::string> reparties_;  // places of the parts so far

    // Of the part under way.
    std::set<std::string> partie_;
    Mots tirees_;
    std::map<std::string, std::map<std::string, Entier>> effets_;  // of these, by place and transition
    std::set<std::string> jeton_;
    std::map<std::string, Omega> omegas_;
    std::map<std::string, SousInvariant> sousInvariants_;
    std::vector<Vecteur> ensemble_;
    Vecteur maxima_;                      // over the set
    std::optional<Vecteur> finDeCourse_;  // of the last bound of the part
    struct Contrainte {
        std::map<std::string, Entier> forme;  // by transition
        Entier constante = 0;
    };
    std::vector<Contrainte> contraintes_;
};

Verification::Verification(const std::string& net, const std::string& rapport, bool verdictSeul)
    : verdictSeul_(verdictSeul) {
    lireNet(net);
    std::istringstream in(rapport);
    std::string ligneLue;
    std::getline(in, ligneLue);
    exiger(ligneLue == "the net is bounded" || ligneLue == "the net is not bounded", "no verdict");
    bornee_ = ligneLue == "the net is bounded";
    while (std::getline(in, ligneLue))
        if (ligneLue.find(':') == std::string::npos && !mots(ligneLue).empty()) lignes_.push_back(mots(ligneLue));
    montrees_ = comptesDuRapport(rapport);
}

void Verification::lireNet(const std::string& texte) {
    std::istringstream in(texte);
    for (std::string l; std::getline(in, l);) {
        const Mots m = mots(l);
        if (m.empty() || m[0] == "net") continue;
        if (m[0] == "pl") {
            places_.insert(m[1]);
            if (m.size() > 2) initial_[m[1]] = nombre(m[2].substr(1, m[2].size() - 2));
            continue;
        }
        Transition& t = transitions_[m[1]];
        int signe = -1;
        for (std::size_t i = 2; i < m.size(); ++i) {
            if (m[i] == "->") {
                signe = 1;
                continue;
            }
            const auto [p, n] = poids(m[i]);
            places_.insert(p);
            mentions_[p].insert(m[1]);
            t.effet[p] += signe * n;
            if (signe < 0) t.pre[p] += n;
        }
    }
}

const Mots& Verification::ligne() const {
    exiger(ici_ < lignes_.size(), "the certificate ends early");
    return lignes_[ici_];
}

/// Each line is about the net that the lines before it have left.
void Verification::verifierReduction() {
    exiger(ligne()[0] == "dead", "\"dead\" expected");
    for (;;) {
        if (commence("dead"))
            verifierMortes(prochaine());
        else if (commence("dominated"))
            verifierDominee(prochaine());
        else if (commence("merge"))
            verifierFusion(prochaine());
        else
            break;
    }
    trouverConstantes();
    for (const std::string& p : constantes_) bornes_[p] = lire(initial_, p);
}

/// What no transition changes keeps its count.
void Verification::trouverConstantes() {
    constantes_ = places_;
    for (const auto& [nom, t] : transitions_)
        for (const auto& [p, n] : t.effet)
            if (n != 0) constantes_.erase(p);
}

/// If a run fired a dead transition, the first one it fires would lack what only dead transitions provide.
void Verification::verifierMortes(const Mots& m) {
    std::vector<Transition> mortes;
    for (std::size_t i = 1; i < m.size(); ++i) {
        mortes.push_back(transitions_.at(m[i]));
        transitions_.erase(m[i]);
    }
    trouverConstantes();
    std::set<std::string> marquables;
    std::set<std::string> montees;
    for (const auto& [p, n] : initial_)
        if (n > 0) marquables.insert(p);
    for (const auto& [nom, t] : transitions_)
        for (const auto& [p, n] : t.effet) {
            if (n + lire(t.pre, p) > 0) marquables.insert(p);
            if (n > 0) montees.insert(p);
        }
    for (const Transition& t : mortes) {
        const bool manque = std::ranges::any_of(t.pre, [&](const auto& b) {
            return b.second > 0 && (!marquables.contains(b.first) ||
                                    (!montees.contains(b.first) && b.second > lire(initial_, b.first)));
        });
        exiger(manque, "not all are dead");
    }
}

/// In any run the other one can stand in its place, or nothing, and the run ends with no less; so nothing more is
/// reached with it. What a constant place holds is there whoever needs it.
void Verification::verifierDominee(const Mots& m) {
    exiger(m.size() == 2 || m.size() == 3, "not one transition and the one that dominates it");
    const Transition dominee = transitions_.at(m[1]);
    transitions_.erase(m[1]);
    const Transition par = m.size() == 3 ? transitions_.at(m[2]) : Transition{};
    for (const auto& [p, n] : par.pre)
        exiger(n <= lire(dominee.pre, p) || (constantes_.contains(p) && n <= lire(initial_, p)),
               "needs more: ", m.back());
    std::set<std::string> changees;
    for (const auto* effet : {&dominee.effet, &par.effet})
        for (const auto& [p, n] : *effet) changees.insert(p);
    for (const std::string& p : changees)
        exiger(lire(par.effet, p) >= lire(dominee.effet, p), "leaves less: ", m.back());
}

/// With f and g the greatest common divisors of what the transitions change the places by, the counts are M0(p) + f c
/// and M0(q) + g c at any time, for the same whole number c; a need of n means c >= (n - M0(p)) / f, rounded up. Where
/// q is needed so much that g less would not do, that says as much already.
void Verification::verifierFusion(const Mots& m) {
    const std::string& p = m.at(1);
    const std::string& q = m.at(2);
    exiger(m.size() == 3 && p != q && places_.contains(p) && places_.contains(q), "not two places");
    std::set<std::string> touchees = mentions_[p];
    touchees.insert(mentions_[q].begin(), mentions_[q].end());
    std::erase_if(touchees, [this](const std::string& t) { return !transitions_.contains(t); });
    Entier f = 0;
    Entier g = 0;
    for (const std::string& t : touchees) {
        f = pgcd(f, lire(transitions_.at(t).effet, p));
        g = pgcd(g, lire(transitions_.at(t).effet, q));
    }
    exiger(f > 0 && g > 0, "a place that does not change");
    for (const std::string& nom : touchees) {
        Transition& t = transitions_.at(nom);
        exiger(lire(t.effet, p) / f == lire(t.effet, q) / g, "not the same multiples: ", nom);
        if (const Entier n = lire(t.pre, p); n > 0) {
            const Entier tours = -enBas(lire(initial_, p) - n, f);
            const Entier autant = somme(lire(initial_, q), produit(tours, g));
            if (autant - g >= lire(t.pre, q)) t.pre[q] = autant;
            mentions_[q].insert(nom);
        }
        t.pre.erase(p);
        t.effet.erase(p);
    }
    fusions_.push_back({p, q, f, g});
}

/// The bounds of the places that were merged into others.
void Verification::restituer() {
    for (auto i = fusions_.rbegin(); i != fusions_.rend(); ++i) {
        exiger(bornes_.contains(i->temoin), "no bound for ", i->temoin);
        const Entier borne = bornes_.at(i->temoin);
        const Entier tours = (borne - lire(initial_, i->temoin)) / i->diviseur;
        bornes_[i->place] = borne == W ? W : somme(lire(initial_, i->place), produit(tours, i->facteur));
    }
}

bool Verification::concerne(const Transition& t) const {
    return std::ranges::any_of(t.effet, [this](const auto& e) { return e.second != 0 && partie_.contains(e.first); });
}

/// Every transition that can change the part is listed, or one is with the same need and effect within the part.
void Verification::verifierTirees() {
    const auto dansPartie = [this](const Vecteur& v) {
        Vecteur r;
        for (const auto& [p, n] : v)
            if (n != 0 && partie_.contains(p)) r[p] = n;
        return r;
    };
    std::set<std::pair<Vecteur, Vecteur>> listees;
    for (const std::string& nom : tirees_)
        listees.insert({dansPartie(transitions_.at(nom).pre), dansPartie(transitions_.at(nom).effet)});
    for (const auto& [nom, t] : transitions_) {
        if (!concerne(t)) continue;
        exiger(listees.contains({dansPartie(t.pre), dansPartie(t.effet)}), "not among the part's transitions: ", nom);
    }
}

/// The places hold one token together at the start, and no transition takes or puts more, or one without the other.
void Verification::verifierJeton(const Mots& m) {
    jeton_ = {m.begin() + 1, m.end()};
    const auto jetons = [this](const Vecteur& v) {
        Entier n = 0;
        for (const std::string& p : jeton_) n += lire(v, p);
        return n;
    };
    exiger(std::ranges::all_of(jeton_, [this](const std::string& p) { return partie_.contains(p); }),
           "the token leaves the part");
    exiger(jetons(initial_) == 1, "there is not one token");
    for (const std::string& nom : tirees_) {
        const Transition& t = transitions_.at(nom);
        exiger(jetons(t.pre) <= 1 && jetons(t.effet) == 0, "the token is not kept by ", nom);
    }
}

void Verification::tirer(const std::string& nom, Entier fois, Vecteur& m) const {
    for (const auto& [p, n] : transitions_.at(nom).effet) {
        Entier& ici = m[p];
        if (ici == W) continue;
        ici = somme(ici, produit(n, fois));
        exiger(ici > -W && ici < W, "a count beyond all measure");
    }
}

/// Follows a run from a marking; every step must be enabled.
Vecteur Verification::suivre(const Mots& course, Vecteur m) const {
    const auto tirable = [&](const std::string& nom) {
        return std::ranges::all_of(transitions_.at(nom).pre,
                                   [&](const auto& b) { return lire(m, b.first) >= b.second; });
    };
    for (std::size_t i = 0; i < course.size(); ++i) {
        if (course[i][0] == '*') {
            const Omega& o = omegas_.at(course[i].substr(1));
            for (const auto& [p, n] : o.besoin) exiger(lire(m, p) >= n, "an acceleration lacks ", p);
            for (const std::string& p : o.monte) m[p] = W;
        } else if (course[i][0] != '(') {
            exiger(tirable(course[i]), "not enabled: ", course[i]);
            tirer(course[i], 1, m);
        } else {
            std::vector<std::pair<std::string, Entier>> bloc;
            Entier fois = 0;
            for (std::string mot = course[i].substr(1);; mot = course.at(++i)) {
                const std::size_t fin = mot.find(')');
                bloc.push_back(poids(mot.substr(0, fin)));
                exiger(bloc.back().second >= 1, "a transition that is not fired");
                if (fin == std::string::npos) continue;
                fois = nombre(mot.substr(fin + 2));
                break;
            }
            exiger(fois >= 1, "a block that is not fired");
            // Each place moves by the same amount each time, so the first and the last time decide, of a transition as
            // of a block.
            const auto elan = [&](const std::string& nom, Entier n) {
                exiger(tirable(nom), "not enabled in a block: ", nom);
                tirer(nom, n - 1, m);
                exiger(tirable(nom), "not enabled to the end of a block: ", nom);
                tirer(nom, 1, m);
            };
            const Vecteur avant = m;
            for (const auto& [nom, n] : bloc) elan(nom, n);
            if (fois > 1) {
                for (auto& [p, n] : m)
                    if (n != W) n = somme(n, produit(n - lire(avant, p), fois - 2));
                for (const auto& [nom, n] : bloc) elan(nom, n);
            }
        }
    }
    return m;
}

/// "omega N raises P... needs P*N... by RUN": the run is followed once from the needs. Where it takes something in the
/// balance, the needs must be "w".
void Verification::verifierOmega(const Mots& m) {
    Omega o;
    std::size_t i = 3;
    for (; m.at(i) != "needs"; ++i) o.monte.insert(m[i]);
    for (++i; m.at(i) != "by"; ++i) o.besoin.insert(poids(m[i]));
    const Mots course(m.begin() + static_cast<std::ptrdiff_t>(i) + 1, m.end());
    for (const auto& [p, n] : o.besoin) exiger(partie_.contains(p), "a place of another part: ", p);
    Vecteur avant = o.besoin;
    for (const std::string& p : constantes_)
        if (!partie_.contains(p)) avant[p] = lire(initial_, p);
    const Vecteur apres = suivre(course, avant);
    std::set<std::string> touchees = o.monte;
    for (const auto& [p, n] : apres) touchees.insert(p);
    for (const std::string& p : touchees) {
        exiger(lire(apres, p) >= lire(avant, p), "an acceleration takes ", p);
        if (o.monte.contains(p)) exiger(lire(apres, p) > lire(avant, p), "an acceleration does not raise ", p);
    }
    omegas_[m.at(1)] = o;
}

/// "subinvariant N TOTAL P*W...": the weighted sum is what it is said to be at the start, and no transition raises it.
void Verification::verifierSousInvariant(const Mots& m) {
    SousInvariant s{nombre(m.at(2)), {}};
    Entier total = 0;
    std::map<std::string, Entier> gains;  // by transition
    for (std::size_t i = 3; i < m.size(); ++i) {
        const auto [p, n] = poids(m[i]);
        exiger(partie_.contains(p) && n > 0 && n < W, "not a weight of one of the part's places: ", m[i]);
        exiger(s.poids.insert({p, n}).second, "twice: ", p);
        total = somme(total, produit(n, lire(initial_, p)));
        for (const auto& [t, e] : effets_[p]) gains[t] = somme(gains[t], produit(n, e));
    }
    for (const auto& [t, n] : gains) exiger(n <= 0, "raised by ", t);
    exiger(total == s.total, "the total is wrong");
    sousInvariants_[m.at(1)] = s;
}

/// The set covers the initial marking and every successor of its members, as far as the part's places go. Most
/// successors are members; the others are looked for from where the last one was found.
void Verification::verifierEnsemble() {
    std::map<std::string, std::size_t> numeros;
    for (const std::string& p : partie_) numeros.emplace(p, numeros.size());
    const auto dense = [&](const Vecteur& v) {
        std::vector<Entier> d(numeros.size(), 0);
        for (const auto& [p, n] : v)
            if (const auto i = numeros.find(p); i != numeros.end()) d[i->second] = n;
        return d;
    };
    std::vector<std::vector<Entier>> membres;
    for (const Vecteur& e : ensemble_) membres.push_back(dense(e));
    const std::set<std::vector<Entier>> exacts(membres.begin(), membres.end());
    std::size_t dernier = 0;
    const auto couverte = [&](const std::vector<Entier>& m) {
        if (exacts.contains(m)) return true;
        for (std::size_t i = 0; i < membres.size(); ++i, dernier = (dernier + 1) % membres.size())
            if (std::ranges::equal(membres[dernier], m, std::ranges::greater_equal())) return true;
        return false;
    };
    exiger(couverte(dense(initial_)), "the set does not cover the start");
    for (const std::string& nom : tirees_) {
        const std::vector<Entier> pre = dense(transitions_.at(nom).pre);
        const std::vector<Entier> effet = dense(transitions_.at(nom).effet);
        for (const std::vector<Entier>& membre : membres) {
            if (!std::ranges::equal(membre, pre, std::ranges::greater_equal())) continue;
            std::vector<Entier> suivant = membre;
            for (std::size_t p = 0; p < suivant.size(); ++p)
                if (suivant[p] != W) suivant[p] = somme(suivant[p], effet[p]);
            exiger(couverte(suivant), "the set does not cover a successor by ", nom);
        }
    }
}

void Verification::verifierSansBorne(const Mots& m) {
    const auto cycle = std::ranges::find(m, "cycle");
    exiger(m.at(1) == "stem" && cycle != m.end(), "\"stem\" and \"cycle\" expected");
    const Vecteur avant = suivre(Mots(m.begin() + 2, cycle), initial_);
    const Vecteur apres = suivre(Mots(cycle + 1, m.end()), avant);
    bool plus = false;
    for (const auto& [p, n] : apres) {
        exiger(n >= lire(avant, p), "the cycle takes ", p);
        plus = plus || n > lire(avant, p);
    }
    for (const auto& [p, n] : avant) exiger(lire(apres, p) >= n, "the cycle takes ", p);
    exiger(plus, "the cycle adds nothing");
    unePartieSansBorne_ = true;
}

Entier Verification::ferme(const Mots& m, const Vecteur& visee) {
    const Entier facteur = nombre(m.at(1));
    exiger(facteur >= 0, "a negative factor");
    Vecteur y = visee;
    for (auto& [p, n] : y) n = produit(n, facteur);
    std::map<std::string, Entier> x;  // coefficients of the transitions
    Entier constante = 0;
    for (std::size_t i = 3; i < m.size(); ++i) {
        const auto [nom, n] = poids(m[i]);
        exiger(n > 0, "a multiplier that is not positive");
        if (nom[0] != '*') {
            exiger(partie_.contains(nom), "a place of another part");
            y[nom] = somme(y[nom], n);
            continue;
        }
        const Contrainte& c = contraintes_.at(static_cast<std::size_t>(nombre(nom.substr(1))));
        constante = somme(constante, produit(n, c.constante));
        for (const auto& [t, k] : c.forme) x[t] = somme(x[t], produit(n, k));
    }
    for (const auto& [p, n] : y) {
        constante = somme(constante, produit(n, lire(initial_, p)));
        for (const auto& [t, e] : effets_[p]) x[t] = somme(x[t], produit(n, e));
    }
    for (const auto& [t, n] : x) exiger(n <= 0, "raised by ", t);
    exiger(constante <= nombre(m.at(2)), "the total is wrong");
    if (facteur == 0) {
        exiger(constante < 0, "a case that can occur");
        return -1;
    }
    return constante < 0 ? -1 : constante / facteur;
}

/// The constraints of a departure. While the token is outside U only what takes it from outside is fired, or leaves it
/// alone; so at the time when it enters U these are all, but for an unknown share of the latter.
void Verification::depart(const Mots& m, std::vector<Contrainte>& premier, Contrainte& second) const {
    const Entier places = nombre(m.at(1));
    exiger(places >= 0 && places + 2 <= static_cast<Entier>(m.size()), "places are missing");
    const auto fin = m.begin() + 2 + static_cast<std::ptrdiff_t>(places);
    const std::set<std::string> u(m.begin() + 2, fin);
    for (const std::string& p : u)
        exiger(jeton_.contains(p) && lire(initial_, p) == 0, "not a place for the token to come to: ", p);
    // -1: elsewhere, 0: nowhere, 1: in U
    const auto ou = [&](const std::string& nom, bool apres) {
        const Transition& t = transitions_.at(nom);
        for (const std::string& p : jeton_)
            if (lire(t.pre, p) + (apres ? lire(t.effet, p) : 0) == 1) return u.contains(p) ? 1 : -1;
        return 0;
    };
    second.constante = -1;
    for (const std::string& t : tirees_) {
        if (ou(t, false) != 1 || ou(t, true) != -1) continue;
        premier.push_back({{{t, -1}}, 0});
        second.forme[t] = 1;
    }
    for (auto p = fin; p != m.end(); ++p) {
        exiger(partie_.contains(*p), "a place of another part");
        Contrainte c{{}, lire(initial_, *p)};
        for (const std::string& nom : tirees_) {
            const Transition& t = transitions_.at(nom);
            const int avant = ou(nom, false);
            if (avant == 0)
                c.forme[nom] = std::max<Entier>(0, lire(t.effet, *p));
            else if (avant == -1)
                c.forme[nom] = ou(nom, true) == 1 ? -lire(t.pre, *p) : lire(t.effet, *p);
        }
        premier.push_back(std::move(c));
    }
}

/// The constraints of the first or the last firing of a transition. Every other one has then been fired no more often
/// than in the end; of what has been fired, what lowers the sum may be left out.
void Verification::instant(const Mots& m, std::vector<Contrainte>& premier, std::vector<Contrainte>& second) {
    const std::string& t = m.at(1);
    exiger(std::ranges::find(tirees_, t) != tirees_.end(), "a transition of another part");
    premier.push_back({{{t, -1}}, 0});
    second.push_back({{{t, 1}}, -1});
    Contrainte c;
    for (std::size_t i = 2; i < m.size(); ++i) {
        const auto [p, y] = poids(m[i]);
        exiger(partie_.contains(p) && y > 0, "not a positive multiple of a place: ", m[i]);
        c.constante = somme(c.constante, produit(y, lire(initial_, p) - lire(transitions_.at(t).pre, p)));
        for (const auto& [u, e] : effets_[p]) c.forme[u] = somme(c.forme[u], produit(y, e));
    }
    for (auto& [u, n] : c.forme)
        if (u != t) n = std::max<Entier>(n, 0);
    if (m[0] == "first")
        c.forme[t] = 0;
    else
        c.constante = somme(c.constante, -c.forme[t]);
    second.push_back(std::move(c));
}

/// The four cases of two firings' order.
std::vector<std::vector<Verification::Contrainte>> Verification::ordres(const Mots& m) {
    Evenement e[2];
    for (const std::size_t i : {0U, 1U}) {
        const std::string& genre = m.at(1 + 2 * i);
        e[i] = {m.at(2 + 2 * i), genre == "last"};
        exiger(genre == "first" || genre == "last", "\"first\" or \"last\" expected, not ", genre);
        exiger(std::ranges::find(tirees_, e[i].transition) != tirees_.end(), "a transition of another part");
    }
    exiger(e[0].transition != e[1].transition, "one transition comes before itself");
    std::vector<Vecteur> sommes(1);
    for (std::size_t i = 5; i < m.size(); ++i) {
        if (m[i] == "then" || m[i] == "else") {
            exiger((m[i] == "else") == (sommes.size() == 2), "\"then\" or \"else\" at the wrong place");
            sommes.emplace_back();
            continue;
        }
        const auto [p, y] = poids(m[i]);
        exiger(partie_.contains(p) && y > 0, "not a positive multiple of a place: ", m[i]);
        exiger(sommes.back().insert({p, y}).second, "twice: ", p);
    }
    exiger(sommes.size() == 4, "four sums expected");
    const Contrainte tireA{{{e[0].transition, 1}}, -1};
    const Contrainte tireB{{{e[1].transition, 1}}, -1};
    return {{{{{e[0].transition, -1}}, 0}},
            {{{{e[1].transition, -1}}, 0}},
            {tireA, tireB, ordre(e[0], e[1], sommes[0], sommes[1])},
            {tireA, tireB, ordre(e[1], e[0], sommes[2], sommes[3])}};
}

/// The sum of y times the places at the earlier firing and z times the places at the later one, each less its needs, is
/// not negative. A firing of any transition comes before both and counts twice, or between them and counts with z, or
/// after them and does not count: what it counts at the most is a coefficient. Of the two transitions it is known where
/// some of their firings come.
Verification::Contrainte Verification::ordre(const Evenement& tot, const Evenement& tard, const Vecteur& y,
                                             const Vecteur& z) {
    Contrainte c;
    std::map<std::string, Entier> avant;  // what a firing before the earlier one adds at that moment
    std::map<std::string, Entier> entre;  // what a firing before the later one adds then
    const auto compter = [&](const Vecteur& poidsDesPlaces, const std::string& qui, auto& gains) {
        for (const auto& [p, n] : poidsDesPlaces) {
            c.constante = somme(c.constante, produit(n, lire(initial_, p) - lire(transitions_.at(qui).pre, p)));
            for (const auto& [t, e] : effets_[p]) gains[t] = somme(gains[t], produit(n, e));
        }
    };
    compter(y, tot.transition, avant);
    compter(z, tard.transition, entre);
    for (const std::string& t : tirees_) {
        const Entier deuxFois = somme(avant[t], entre[t]);
        const Entier auMieux = std::max({Entier{0}, entre[t], deuxFois});
        if (t == tot.transition && tot.dernier) {
            // All but the last come before both, the last one between them.
            c.forme[t] = deuxFois;
            c.constante = somme(c.constante, somme(entre[t], -deuxFois));
        } else if (t == tot.transition) {
            // The first one comes between them, the others there or later.
            c.forme[t] = std::max<Entier>(0, entre[t]);
            c.constante = somme(c.constante, somme(entre[t], -c.forme[t]));
        } else if (t == tard.transition && tard.dernier) {
            // All but the last come before both, or between them.
            c.forme[t] = std::max(entre[t], deuxFois);
            c.constante = somme(c.constante, -c.forme[t]);
        } else if (t != tard.transition) {
            c.forme[t] = auMieux;
        }
    }
    return c;
}

/// What follows from constraints in force because firing counts are integers that are not negative.
Verification::Contrainte Verification::arrondie(const Mots& m) {
    const Entier diviseur = nombre(m.at(1));
    exiger(diviseur > 0, "not a divisor");
    Contrainte c;
    for (std::size_t i = 2; i < m.size(); ++i) {
        const auto [nom, y] = poids(m[i]);
        exiger(y > 0, "a multiplier that is not positive");
        if (nom[0] == '*') {
            const Contrainte& autre = contraintes_.at(static_cast<std::size_t>(nombre(nom.substr(1))));
            c.constante = somme(c.constante, produit(y, autre.constante));
            for (const auto& [t, n] : autre.forme) c.forme[t] = somme(c.forme[t], produit(y, n));
        } else {
            exiger(partie_.contains(nom), "a place of another part");
            c.constante = somme(c.constante, produit(y, lire(initial_, nom)));
            for (const auto& [t, e] : effets_[nom]) c.forme[t] = somme(c.forme[t], produit(y, e));
        }
    }
    c.constante = enBas(c.constante, diviseur);
    for (auto& [t, n] : c.forme) n = -enBas(-n, diviseur);
    return c;
}

/// Reads one tree of cases; @return the largest bound of its leaves
Entier Verification::cas(const Vecteur& visee) {
    const Mots m = prochaine();
    if (m[0] == "close") return ferme(m, visee);
    const std::size_t enVigueur = contraintes_.size();
    if (m[0] == "order") {
        Entier plusGrand = -1;
        for (const std::vector<Contrainte>& suite : ordres(m)) {
            contraintes_.insert(contraintes_.end(), suite.begin(), suite.end());
            plusGrand = std::max(plusGrand, cas(visee));
            contraintes_.resize(enVigueur);
        }
        return plusGrand;
    }
    if (m[0] == "round") {
        contraintes_.push_back(arrondie(m));
        const Entier a = cas(visee);
        contraintes_.resize(enVigueur);
        return a;
    }
    std::vector<Contrainte> premier;
    std::vector<Contrainte> seconds;
    Contrainte second;
    if (m[0] == "first" || m[0] == "last") {
        instant(m, premier, seconds);
    } else if (m[0] == "threshold") {
        const Entier k = nombre(m.at(2));
        premier.push_back({{{m.at(1), -1}}, k});
        second = {{{m.at(1), 1}}, -k - 1};
    } else if (m[0] == "level") {
        const Entier k = nombre(m.at(2));
        exiger(partie_.contains(m.at(1)), "a place of another part");
        premier.push_back({{}, k - lire(initial_, m.at(1))});
        second.constante = lire(initial_, m.at(1)) - k - 1;
        for (const std::string& t : tirees_) {
            second.forme[t] = lire(transitions_.at(t).effet, m.at(1));
            premier[0].forme[t] = -second.forme[t];
        }
    } else if (m[0] == "departure") {
        depart(m, premier, second);
    } else {
        exiger(m[0] == "entry", "a case expected, not ", m[0]);
        const std::set<std::string> q(m.begin() + 1, m.end());
        for (const std::string& p : q)
            exiger(partie_.contains(p) && lire(initial_, p) == 0, "marked at the start: ", p);
        second.constante = -1;
        for (const std::string& t : tirees_) {
            const Transition& tr = transitions_.at(t);
            const bool prend =
                std::ranges::any_of(tr.pre, [&](const auto& b) { return b.second > 0 && q.contains(b.first); });
            const bool met = std::ranges::any_of(
                tr.effet, [&](const auto& e) { return e.second + lire(tr.pre, e.first) > 0 && q.contains(e.first); });
            if (prend)
                premier.push_back({{{t, -1}}, 0});
            else if (met)
                second.forme[t] = 1;
        }
    }
    contraintes_.insert(contraintes_.end(), premier.begin(), premier.end());
    const Entier a = cas(visee);
    contraintes_.resize(enVigueur);
    if (seconds.empty()) seconds.push_back(second);
    contraintes_.insert(contraintes_.end(), seconds.begin(), seconds.end());
    const Entier b = cas(visee);
    contraintes_.resize(enVigueur);
    return std::max(a, b);
}

/// Goes on with the unfolded net: what takes the token is there for the first places and for the second ones, and the
/// transitions named take it from those to these. Whoever forgets the phases sees the runs of the net, and none less.
void Verification::deplier(const Mots& passages) {
    exiger(!jeton_.empty(), "there is no token to unfold the net for");
    const std::set<std::string> premieres = jeton_;
    const Mots avant = tirees_;
    for (const std::string& t : passages)
        exiger(std::ranges::find(avant, t) != avant.end(), "a transition of another part");
    const auto mettre = [](Vecteur& v, const std::string& p, Entier n) {
        v.erase(p);
        if (n != 0) v[p] = n;
    };
    for (const std::string& nom : avant) {
        const Transition t = transitions_.at(nom);
        Transition seconde = t;
        Transition passage = t;
        bool prend = false;
        for (const std::string& p : premieres) {
            const Entier pris = lire(t.pre, p);
            const Entier mis = somme(pris, lire(t.effet, p));
            prend = prend || pris > 0;
            mettre(passage.effet, p, -pris);
            mettre(passage.effet, p + "(2)", mis);
            mettre(seconde.pre, p, 0);
            mettre(seconde.pre, p + "(2)", pris);
            mettre(seconde.effet, p, 0);
            mettre(seconde.effet, p + "(2)", mis - pris);
        }
        if (std::ranges::find(passages, nom) != passages.end()) {
            exiger(prend, "does not take the token: ", nom);
            transitions_[nom] = passage;
        }
        if (!prend) continue;
        transitions_[nom + "(2)"] = seconde;
        tirees_.push_back(nom + "(2)");
    }
    for (const std::string& p : premieres) {
        jeton_.insert(p + "(2)");
        partie_.insert(p + "(2)");
    }
    effets_.clear();
    for (const std::string& t : tirees_)
        for (const auto& [p, n] : transitions_.at(t).effet) effets_[p][t] = n;
}

void Verification::verifierMajorant(const Mots& m, const Vecteur& visee, std::optional<Entier> borne) {
    exiger(m[0] == "most", "\"most\" expected, not ", m[0]);
    if (m.back() == "set" || m.back() == "relaxed") {
        exiger(!ensemble_.empty(), "there is no set");
        for (const auto& [p, n] : visee)
            exiger(lire(maxima_, p) <= (borne ? *borne : W - 1), "the set holds more of ", p);
        return;
    }
    if (m.size() > 3 && m[3] == "subinvariant") {
        const SousInvariant& s = sousInvariants_.at(m.at(4));
        for (const auto& [p, n] : visee) {
            exiger(visee.size() == 1 && lire(s.poids, p) > 0, "not in the sum: ", p);
            exiger(s.total / lire(s.poids, p) == nombre(m.at(1)), "the sum shows another bound of ", p);
        }
        exiger(borne && nombre(m.at(1)) <= *borne, "the sum shows less than the bound");
        return;
    }
    if (m.size() > 3 && m[3] == "phases") {
        Verification deplie = *this;
        deplie.deplier(Mots(m.begin() + 4, m.end()));
        Vecteur ensemble;
        for (const auto& [p, n] : visee) {
            ensemble[p] = n;
            if (jeton_.contains(p)) ensemble[p + "(2)"] = n;
        }
        const Entier trouve = deplie.cas(ensemble);
        ici_ = deplie.ici_;
        exiger(trouve <= nombre(m.at(1)) && borne && trouve <= *borne, "the cases show less of the unfolded net");
        return;
    }
    const Entier trouve = cas(visee);
    exiger(trouve <= nombre(m.at(1)), "the cases show less");
    exiger(!borne || trouve <= *borne, "the cases show less than the bound");
}

void Verification::verifierBorne(const Mots& m) {
    const std::string& p = m.at(1);
    const Entier borne = nombre(m.at(2));
    exiger(partie_.contains(p), "not of the part: ", p);
    exiger(m.at(3) == "by" || (m.at(3) == "on" && finDeCourse_), "neither by a run nor on from one: ", p);
    finDeCourse_ = suivre(Mots(m.begin() + 4, m.end()), m.at(3) == "by" ? initial_ : *finDeCourse_);
    exiger(lire(*finDeCourse_, p) == borne, "the run does not end with the bound of ", p);
    if (borne < W) verifierMajorant(prochaine(), {{p, 1}}, borne);
    bornes_[p] = borne;
}

void Verification::verifierPartie() {
    const Mots m = prochaine();
    exiger(m[0] == "part", "\"part\" expected, not ", m[0]);
    partie_ = {m.begin() + 1, m.end()};
    for (const std::string& p : partie_) exiger(reparties_.insert(p).second, "in two parts: ", p);
    tirees_ = prochaine();
    exiger(tirees_[0] == "fires", "\"fires\" expected");
    tirees_.erase(tirees_.begin());
    effets_.clear();
    for (const std::string& t : tirees_)
        for (const auto& [p, n] : transitions_.at(t).effet) effets_[p][t] = n;
    jeton_.clear();
    omegas_.clear();
    sousInvariants_.clear();
    ensemble_.clear();
    maxima_.clear();
    finDeCourse_.reset();
    verifierTirees();
    if (commence("token")) verifierJeton(prochaine());
    const bool sansBorneAvant = unePartieSansBorne_;
    unePartieSansBorne_ = false;
    if (commence("unbounded")) verifierSansBorne(prochaine());
    const bool sansBorne = unePartieSansBorne_;
    unePartieSansBorne_ = unePartieSansBorne_ || sansBorneAvant;
    while (commence("set") || commence("relaxed")) {
        Vecteur v;
        const Mots e = prochaine();
        for (std::size_t i = 1; i < e.size(); ++i) v.insert(poids(e[i]));
        for (const auto& [p, n] : v) {
            exiger(n >= 0 && n <= W, "not a count: ", p);
            maxima_[p] = std::max(maxima_[p], n);
        }
        ensemble_.push_back(v);
    }
    if (!ensemble_.empty()) verifierEnsemble();
    if (verdictSeul_) {
        if (sansBorne) return;
        exiger(prochaine()[0] == "total", "\"total\" expected");
        Vecteur toutes;
        for (const std::string& p : partie_) toutes[p] = 1;
        verifierMajorant(prochaine(), toutes, std::nullopt);
        for (const std::string& p : partie_) bornes_[p] = 0;  // finite is all that is claimed
        return;
    }
    while (commence("omega") || commence("subinvariant") || commence("bound")) {
        if (commence("omega"))
            verifierOmega(prochaine());
        else if (commence("subinvariant"))
            verifierSousInvariant(prochaine());
        else
            verifierBorne(prochaine());
    }
}

/// Every place has a proved bound, the marking lines show it, and no more.
void Verification::verifierMarquages() const {
    for (const std::string& p : places_) {
        exiger(bornes_.contains(p), "no bound for ", p);
        const auto montree = montrees_.find(p);
        const Entier vue = montree == montrees_.end() ? 0 : montree->second == -1 ? W : montree->second;
        exiger(vue == bornes_.at(p), "the marking lines do not show the bound of ", p);
        exiger(!bornee_ || vue < W, "bounded, but not ", p);
    }
}

void Verification::verifier() {
    verifierReduction();
    while (ici_ < lignes_.size()) verifierPartie();
    exiger(bornee_ == !unePartieSansBorne_, "the verdict is not what the parts show");
    if (bornee_ || !verdictSeul_) restituer();
    if (!verdictSeul_) return verifierMarquages();
    if (bornee_)
        for (const std::string& p : places_) exiger(bornes_.contains(p), "in no part: ", p);
}

}  // namespace

std::string verifier(const std::string& net, const std::string& rapport, bool verdictSeul) {
    try {
        Verification(net, rapport, verdictSeul).verifier();
        return "";
    } catch (const Faux& e) {
        return e.what();
    } catch (const std::out_of_range&) {
        return "a line or a name is missing";
    }
}

}  // namespace essai
