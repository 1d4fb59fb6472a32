-- Fills the tables of warehouse.sql with the same rows each time. What looks random comes from
-- multiplying row numbers by primes.

BEGIN;

INSERT INTO country (country_key, country_name) VALUES
  (1, 'Austria'), (2, 'Belgium'), (3, 'Denmark'), (4, 'France'), (5, 'Germany');

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 12)
INSERT INTO region (region_key, region_name, country_key)
SELECT i, 'Region ' || i, 1 + i % 5 FROM n;

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40)
INSERT INTO city (city_key, city_name, region_key)
SELECT i, 'City ' || i, 1 + i * 7 % 12 FROM n;

-- The fiscal year 2024 begins in July 2023.
INSERT INTO fiscal_period (fiscal_period_key, fiscal_year, fiscal_quarter) VALUES
  (1, 2023, 3), (2, 2023, 4), (3, 2024, 1), (4, 2024, 2), (5, 2024, 3), (6, 2024, 4);

WITH RECURSIVE d (day) AS (
  SELECT '2023-01-01' UNION ALL SELECT date(day, '+1 day') FROM d WHERE day < '2024-06-30'
)
INSERT INTO calendar (date_key, calendar_date, calendar_month, calendar_year, fiscal_period_key)
SELECT
  CAST(strftime('%Y%m%d', day) AS INTEGER),
  day,
  substr(day, 1, 7),
  CAST(substr(day, 1, 4) AS INTEGER),
  1 + (CAST(substr(day, 1, 4) AS INTEGER) - 2023) * 4 + (CAST(substr(day, 6, 2) AS INTEGER) - 1) / 3
FROM d;

INSERT INTO account (account_key, account_name, parent_account_key) VALUES
  (1, 'Assets', NULL), (2, 'Expenses', NULL), (3, 'Stock', 1), (4, 'Fittings', 1),
  (5, 'Purchases', 2), (6, 'Rent', 2), (7, 'Wages', 2);

-- The books of all stores are kept in three of the five countries.
INSERT INTO cost_center (cost_center_key, cost_center_name, country_key) VALUES
  (1, 'Alpine books', 1), (2, 'Western books', 2), (3, 'Main books', 5), (4, 'Online books', 5);

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 9)
INSERT INTO supplier (supplier_key, supplier_name, country_key)
SELECT i, 'Supplier ' || i, 1 + i * 3 % 5 FROM n;

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1200)
INSERT INTO ledger_entry
  (ledger_entry_key, account_key, cost_center_key, fiscal_period_key, supplier_key, booked_amount)
SELECT
  i, 3 + i * 11 % 5, 1 + i * 13 % 4, 1 + i * 17 % 6,
  CASE WHEN i % 3 = 0 THEN 1 + i * 19 % 9 END,
  1000 + i * 7919 % 90000
FROM n;

INSERT INTO category (category_key, category_name) VALUES
  (1, 'Bicycles'), (2, 'Clothing'), (3, 'Parts'), (4, 'Tools');

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 11)
INSERT INTO subcategory (subcategory_key, subcategory_name, category_key)
SELECT i, 'Subcategory ' || i, 1 + i % 4 FROM n;

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 70)
INSERT INTO product (product_key, product_name, list_price, subcategory_key, supplier_key)
SELECT i, 'Product ' || i, 500 + i * 1709 % 20000, 1 + i * 5 % 11, 1 + i * 7 % 9 FROM n;

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 18)
INSERT INTO store (store_key, store_name, city_key, cost_center_key)
SELECT i, 'Store ' || i, 1 + i * 23 % 40, 1 + i % 4 FROM n;

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 250)
INSERT INTO customer (customer_key, customer_name, city_key)
SELECT i, 'Customer ' || i, 1 + i * 31 % 40 FROM n;

WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 120)
INSERT INTO household (household_key, household_size)
SELECT i, CASE i % 3 WHEN 0 THEN 'couple' WHEN 1 THEN 'family' ELSE 'single' END FROM n;

-- Every fourth customer lives in two households.
INSERT INTO customer_household (customer_key, household_key, share_percent)
SELECT customer_key, 1 + customer_key * 7 % 120, CASE customer_key % 4 WHEN 0 THEN 50 ELSE 100 END
FROM customer
UNION ALL
SELECT customer_key, 1 + (customer_key * 7 + 11) % 120, 50 FROM customer WHERE customer_key % 4 = 0;

INSERT INTO promotion (promotion_key, promotion_name) VALUES
  (1, 'Clearance'), (2, 'Loyalty card'), (3, 'Spring sale');

-- Orders have one to four lines. They are due after two weeks and take up to 19 days; the lines of
-- the last days are not shipped yet.
WITH RECURSIVE
  orders (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM orders WHERE i < 1500),
  lines (j) AS (SELECT 1 UNION ALL SELECT j + 1 FROM lines WHERE j < 4),
  dated (i, j, day) AS (
    SELECT i, j, date('2023-01-01', (i * 509 % 532) || ' days')
    FROM orders JOIN lines ON j <= 1 + i % 4
  )
INSERT INTO sales
  (order_number, line_number, product_key, store_key, customer_key, promotion_key,
   order_date_key, due_date_key, ship_date_key, quantity, amount)
SELECT
  i, j, product_key, 1 + i * 41 % 18, 1 + i * 97 % 250,
  CASE (i * 3 + j * 5) % 7 WHEN 0 THEN 1 WHEN 2 THEN 2 WHEN 5 THEN 3 END,
  CAST(strftime('%Y%m%d', day) AS INTEGER),
  CAST(strftime('%Y%m%d', day, '+14 days') AS INTEGER),
  CASE WHEN date(day, (1 + (i * 11 + j * 3) % 19) || ' days') < '2024-06-20'
    THEN CAST(strftime('%Y%m%d', day, (1 + (i * 11 + j * 3) % 19) || ' days') AS INTEGER) END,
  1 + (i + j) % 3,
  list_price * (1 + (i + j) % 3)
FROM dated JOIN product ON product_key = 1 + (i * 29 + j * 53) % 70;

INSERT INTO return_reason (return_reason_key, reason) VALUES
  (1, 'Damaged'), (2, 'Disliked'), (3, 'Does not fit'), (4, 'Wrong item');

-- One line in eleven comes back, up to 25 days after it was shipped; every other one to another
-- store. Some come back in pieces.
WITH returned AS (
  SELECT order_number, line_number, order_number * 4 + line_number AS n, store_key, quantity,
    calendar_date
  FROM sales JOIN calendar ON date_key = ship_date_key
  WHERE (order_number * 5 + line_number) % 11 = 0 AND calendar_date < '2024-06-01'
)
INSERT INTO returns
  (order_number, line_number, store_key, date_key, return_reason_key, returned_quantity)
SELECT
  order_number, line_number, CASE n % 2 WHEN 0 THEN store_key ELSE 1 + n % 18 END,
  CAST(strftime('%Y%m%d', calendar_date, (1 + n % 25) || ' days') AS INTEGER),
  1 + n * 7 % 4, 1
FROM returned JOIN (SELECT 1 AS piece UNION ALL SELECT 2) ON piece <= quantity;

-- Each store counts a third of the products on the first day of each quarter.
INSERT INTO inventory (date_key, product_key, store_key, on_hand)
SELECT date_key, product_key, store_key, (product_key * 13 + store_key * 17 + date_key / 100) % 60
FROM calendar CROSS JOIN product CROSS JOIN store
WHERE calendar_date IN
    ('2023-01-01', '2023-04-01', '2023-07-01', '2023-10-01', '2024-01-01', '2024-04-01')
  AND (product_key + store_key) % 3 = 0;

COMMIT;
