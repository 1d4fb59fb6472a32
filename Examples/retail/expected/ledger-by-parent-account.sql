SELECT "parent account".account_name, fiscal_period.fiscal_year, sum(ledger_entry.booked_amount) AS amount
FROM ledger_entry
JOIN account ON ledger_entry.account_key = account.account_key
LEFT JOIN account AS "parent account" ON account.parent_account_key = "parent account".account_key
JOIN fiscal_period ON ledger_entry.fiscal_period_key = fiscal_period.fiscal_period_key
GROUP BY "parent account".account_name, fiscal_period.fiscal_year
ORDER BY "parent account".account_name, fiscal_period.fiscal_year;
